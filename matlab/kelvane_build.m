% KELVANE_BUILD  Compile kelvane_mex and kelvane_engine with the host's own mex.
%
%   kelvane_build()
%   kelvane_build(name, value, ...)
%   [files, calls] = kelvane_build(...)
%
%   Needs a compiler, GCC or Clang, on 64-bit Linux, and no library; takes about a minute.
%
%   Options:
%     'Output'   folder for both, default that of this function, where they hide the help texts of the same names
%     'Display'  'iter' (default): a line for each file; or 'off'
%     'DryRun'   true: nothing is compiled, the calls of mex are only returned; default false
%
%   Outputs:
%     files          1 x 2 cell, the two modules
%     calls          1 x M, the inputs of each call of mex, a cell of words
%
%   Example:
%     >> [files, calls] = kelvane_build('DryRun', true, 'Output', 'here');
%     >> files{1}
%     ans = here/kelvane_mex.mex
%     >> calls{1}{1}
%     ans = -c
%
%
%   See also kelvane_mex, mex.

% SPDX-License-Identifier: BSD-3-Clause
% The build of the modules without CMake.
function [files, calls] = kelvane_build(varargin)
  here = fileparts(mfilename('fullpath'));
  defaults = struct('Output', here, 'Display', 'iter', 'DryRun', false);
  options = parse_options('kelvane_build', defaults, varargin);
  options.Display = one_of(options.Display, {'off', 'iter'}, 'kelvane:option', 'Display');
  if ~ischar(options.Output) || isempty(options.Output)
    error('kelvane:option', 'Output must be a folder.');
  end
  project = fileparts(here);
  if ~exist(fullfile(project, 'kelvane_mex.cpp'), 'file')
    error('kelvane:build', 'The sources of kelvane_mex are not in the folder above that of kelvane_build.');
  end
  hosts = {'matlab', 'octave'};
  host = hosts{1 + (exist('OCTAVE_VERSION', 'builtin') ~= 0)};
  [modules, compile_options] = build_sources(project);
  places = build_places(host, project, options.Output);
  [calls, steps] = build_calls(host, modules, compile_options, places);
  if ~options.DryRun
    if strcmp(options.Display, 'off')
      steps = {};
    end
    ensure_folder(options.Output);
    options.Output = absolute_folder(options.Output);
    build(project, options.Output, modules, places, calls, steps);
  end
  files = files_in(options.Output, {modules.name});
  if nargout == 0
    clear files calls;
  end
end

function files = files_in(folder, names)
  files = cellfun(@(name) fullfile(folder, [name, '.', mexext()]), names, 'UniformOutput', false);
end

function folder = absolute_folder(folder)
  if exist('OCTAVE_VERSION', 'builtin')
    folder = canonicalize_file_name(folder);  % fileattrib would take it for a pattern
  else
    [~, attributes] = fileattrib(folder);
    folder = attributes.Name;
  end
end

% Modules are linked beside their places and renamed in one step: one that is loaded must not be written over.
function build(project, output, modules, places, calls, steps)
  make_private_folder(places.objects);
  names = {modules.name};
  files = files_in(output, names);
  parts = files_in(output, strcat(names, places.suffix));
  finishing = onCleanup(@() remove_all(places.objects, parts));
  cellfun(@claim, parts, files);  % before the minutes that compiling takes
  if exist('OCTAVE_VERSION', 'builtin')
    symlink(project, places.project);
    symlink(output, places.output);
  end
  for source = [modules.sources]
    ensure_folder(fullfile(places.objects, fileparts(source{1})));
  end
  for i = 1:numel(calls)
    if ~isempty(steps)
      fprintf('[%d/%d] %s\n', i, numel(calls), steps{i});
    end
    mex(calls{i}{:});
  end
  clear(names{:});
  cellfun(@put_in_place, parts, files);
  rehash();  % the host has seen this folder without the modules
end

% Whether a module can be written is seen by a file beside it.
function claim(part, file)
  [stream, message] = fopen(part, 'w');
  if stream < 0
    cannot_write(file, message);
  end
  fclose(stream);
end

function put_in_place(part, file)
  if exist('OCTAVE_VERSION', 'builtin')
    [failed, message] = rename(part, file);  % movefile would take the names for patterns
  else
    [done, message] = movefile(part, file, 'f');
    failed = ~done;
  end
  if failed
    cannot_write(file, message);
  end
end

function cannot_write(file, message)
  error('kelvane:build', 'The module cannot be written to %s: %s', file, message);
end

% Links first, so that nothing behind them is touched.
function remove_all(objects, parts)
  if exist('OCTAVE_VERSION', 'builtin')
    for file = [{fullfile(objects, 'project'), fullfile(objects, 'output')}, parts]
      [~, ~] = unlink(file{1});
    end
    confirm_recursive_rmdir(false, 'local');
  else
    for part = parts(cellfun(@(part) exist(part, 'file') > 0, parts))
      delete(part{1});
    end
  end
  rmdir(objects, 's');
end

%!test  % nothing is compiled in a dry run
%! [files, calls] = kelvane_build('DryRun', true, 'Output', 'nowhere');
%! assert(files, fullfile('nowhere', strcat({'kelvane_mex.', 'kelvane_engine.'}, mexext())));
%! assert(exist('nowhere'), 0);
%! assert(numel(calls) > 10);

%!test  % the last two calls link all that the others compile, each once; what both need is among it
%! [~, calls] = kelvane_build('DryRun', true);
%! outputs = cellfun(@(call) call{find(strcmp(call, '-o')) + 1}, calls(1:end - 2), 'UniformOutput', false);
%! assert(numel(unique(outputs)), numel(outputs));
%! linked = cellfun(@(call) intersect(outputs, call), calls(end - 1:end), 'UniformOutput', false);
%! assert(union(linked{:}), sort(outputs));
%! assert(numel(intersect(linked{:})) > 10);

%!error <Output must be a folder> kelvane_build('Output', 3)
%!error <Output must be a folder> kelvane_build('Output', '')
%!error <Did you mean 'Output'> kelvane_build('Outputs', '/usr')

%!demo
%! % what would be compiled, and how
%! [files, calls] = kelvane_build('DryRun', true);
%! disp(files)
