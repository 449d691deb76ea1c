% KELVANE_BUILD  Compile kelvane_mex with the host's own mex.
%
%   kelvane_build()
%   kelvane_build(name, value, ...)
%   [file, calls] = kelvane_build(...)
%
%   For hosts without CMake around; otherwise "cmake --preset release" and "cmake --build --preset release" do the same.
%   Sources and their options come from CMake's files. 64-bit Linux with GCC or Clang; takes one or two minutes.
%
%   Options:
%     'OpenCV'       folder in which include/opencv4 or include, and lib, lib64 or lib/x86_64-linux-gnu hold the core of
%                    OpenCV 3 or 4; by default /usr/local or /usr. With a static core alone, such as that of
%                    scripts/opencv_core, the module is self-contained: it loads beside any other OpenCV and LAPACK
%     'Output'       folder for the module, default that of this function, where it hides the help text kelvane_mex.m
%     'LinkOptions'  cell of options for the linker, such as {'-lz', '-llapack'}: what a static OpenCV needs besides itself
%     'Display'      'iter' (default): a line for each file; or 'off'
%     'DryRun'       true: nothing is compiled, the calls of mex are only returned; default false
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
  defaults = struct('OpenCV', '', 'Output', here, 'LinkOptions', {{}}, 'Display', 'iter', 'DryRun', false);
  options = parse_options('kelvane_build', defaults, varargin);
  options.Display = one_of(options.Display, {'off', 'iter'}, 'kelvane:option', 'Display');
  check_texts(options);
  project = fileparts(here);
  if ~exist(fullfile(project, 'kelvane_mex.cpp'), 'file')
    error('kelvane:build', 'The sources of kelvane_mex are not in the folder above that of kelvane_build.');
  end
  hosts = {'matlab', 'octave'};
  host = hosts{1 + (exist('OCTAVE_VERSION', 'builtin') ~= 0)};
  opencv = find_opencv(options.OpenCV);
  is_static = ~exist(fullfile(opencv.library, 'libopencv_core.so'), 'file');
  [sources, opencv.flags] = build_sources(project, is_static);
  if ~is_static
    opencv.flags = {['-Wl,-rpath,', opencv.library]};
  end
  places = build_places(host, project, options.Output);
  calls = build_calls(host, sources, places, opencv, options.LinkOptions);
  file = fullfile(options.Output, ['kelvane_mex.', mexext()]);
  if ~options.DryRun
    steps = {};
    if strcmp(options.Display, 'iter')
      steps = [{sources.file}, {'linking'}];
    end
    ensure_folder(options.Output);
    file = build(project, absolute_folder(options.Output), places, calls, steps);
  end
  if nargout == 0
    clear file calls;
  end
end

function check_texts(options)
  if ~ischar(options.OpenCV) || ~ischar(options.Output) || ~iscellstr(options.LinkOptions)
    error('kelvane:option', 'OpenCV and Output must be folders, LinkOptions a cell of words.');
  end
end

function opencv = find_opencv(prefix)
  prefixes = {prefix};
  if isempty(prefix)
    prefixes = {'/usr/local', '/usr'};
  end
  for candidate = prefixes
    opencv.include = first_with(candidate{1}, {'include/opencv4', 'include'}, {'opencv2/core.hpp'});
    opencv.library = first_with(candidate{1}, {'lib', 'lib64', 'lib/x86_64-linux-gnu'}, ...
                                {'libopencv_core.so', 'libopencv_core.a'});
    if ~isempty(opencv.include) && ~isempty(opencv.library)
      return;
    end
  end
  error('kelvane:build', 'OpenCV''s core is not below %s. Say where it is: kelvane_build(''OpenCV'', folder).', ...
        strjoin(prefixes, ' or '));
end

function folder = first_with(prefix, folders, files)
  for i = 1:numel(folders)
    folder = fullfile(prefix, folders{i});
    if any(cellfun(@(file) exist(fullfile(folder, file), 'file'), files))
      return;
    end
  end
  folder = '';
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
%! [~, calls] = kelvane_build('DryRun', true, 'LinkOptions', {'-lz'});
%! outputs = cellfun(@(call) call{find(strcmp(call, '-o')) + 1}, calls, 'UniformOutput', false);
%! assert(all(ismember(outputs(1:end - 1), calls{end})));
%! assert(calls{end}(end - 1:end), {'-lopencv_core', '-lz'});

%!error <OpenCV's core is not below /nowhere> kelvane_build('OpenCV', '/nowhere')
%!error <OpenCV and Output must be folders> kelvane_build('Output', 3)
%!error <Did you mean 'OpenCV'> kelvane_build('OpenCF', '/usr')
