% KELVANE_BUILD  Compile kelvane_mex with the host's own mex.
%
%   kelvane_build()
%   kelvane_build(name, value, ...)
%   [file, calls] = kelvane_build(...)
%
%   Needs a compiler, GCC or Clang, on 64-bit Linux, and no library; takes about a minute.
%
%   Options:
%     'Output'   folder for the module, default that of this function, where it hides the help text kelvane_mex.m
%     'Display'  'iter' (default): a line for each file; or 'off'
%     'DryRun'   true: nothing is compiled, the calls of mex are only returned; default false
%
%   Outputs:
%     file           the module
%     calls          1 x M, the inputs of each call of mex, a cell of words
%
%   Example:
%     [file, calls] = kelvane_build('DryRun', true, 'Output', 'here');
%     [~, source] = fileparts(calls{1}{end});
%     fprintf('%s after mex %s ... %s.cpp\n', file(1:16), calls{1}{1}, source);
%   Output:
%     here/kelvane_mex after mex -c ... kelvane_mex.cpp
%
%   See also kelvane_mex, mex.

% SPDX-License-Identifier: BSD-3-Clause
% The build of the module without CMake.
function [file, calls] = kelvane_build(varargin)
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
  [sources, compile_options] = build_sources(project);
  places = build_places(host, project, options.Output);
  calls = build_calls(host, sources, compile_options, places);
  file = fullfile(options.Output, ['kelvane_mex.', mexext()]);
  if ~options.DryRun
    steps = {};
    if strcmp(options.Display, 'iter')
      steps = [sources, {'linking'}];
    end
    ensure_folder(options.Output);
    file = build(project, absolute_folder(options.Output), places, calls, steps);
  end
  if nargout == 0
    clear file calls;
  end
end

function folder = absolute_folder(folder)
  if exist('OCTAVE_VERSION', 'builtin')
    folder = canonicalize_file_name(folder);  % fileattrib would take it for a pattern
  else
    [~, attributes] = fileattrib(folder);
    folder = attributes.Name;
  end
end

% The module is linked beside its place and renamed in one step: one that is loaded must not be written over.
function file = build(project, output, places, calls, steps)
  make_private_folder(places.objects);
  file = fullfile(output, ['kelvane_mex.', mexext()]);
  part = fullfile(output, [places.name, '.', mexext()]);
  finishing = onCleanup(@() remove_all(places.objects, part));
  [stream, message] = fopen(part, 'w');  % before the minutes that compiling takes
  if stream < 0
    error('kelvane:build', 'The module cannot be written to %s: %s', file, message);
  end
  fclose(stream);
  if exist('OCTAVE_VERSION', 'builtin')
    symlink(project, places.project);
    symlink(output, places.output);
  end
  for i = 1:numel(calls)
    if ~isempty(steps)
      fprintf('[%d/%d] %s\n', i, numel(calls), steps{i});
    end
    mex(calls{i}{:});
  end
  clear('kelvane_mex');
  if exist('OCTAVE_VERSION', 'builtin')
    [failed, message] = rename(part, file);  % movefile would take the names for patterns
  else
    [done, message] = movefile(part, file, 'f');
    failed = ~done;
  end
  if failed
    error('kelvane:build', 'The module cannot be written to %s: %s', file, message);
  end
  rehash();  % the host has seen this folder without the module
end

% Links first, so that nothing behind them is touched.
function remove_all(objects, part)
  if exist('OCTAVE_VERSION', 'builtin')
    for file = {fullfile(objects, 'project'), fullfile(objects, 'output'), part}
      [~, ~] = unlink(file{1});
    end
    confirm_recursive_rmdir(false, 'local');
  elseif exist(part, 'file')
    delete(part);
  end
  rmdir(objects, 's');
end

%!test  % nothing is compiled in a dry run
%! [file, calls] = kelvane_build('DryRun', true, 'Output', 'nowhere');
%! assert(file, fullfile('nowhere', ['kelvane_mex.', mexext()]));
%! assert(exist('nowhere'), 0);
%! assert(numel(calls) > 10);

%!test  % the last call links all that the others compile
%! [~, calls] = kelvane_build('DryRun', true);
%! outputs = cellfun(@(call) call{find(strcmp(call, '-o')) + 1}, calls, 'UniformOutput', false);
%! assert(all(ismember(outputs(1:end - 1), calls{end})));

%!error <Output must be a folder> kelvane_build('Output', 3)
%!error <Output must be a folder> kelvane_build('Output', '')
%!error <Did you mean 'Output'> kelvane_build('Outputs', '/usr')
