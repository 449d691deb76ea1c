% SPDX-License-Identifier: BSD-3-Clause
% kelvane_build compiles the same sources as CMake, each with the same options.

% File by file, what CMake would do, as a struct array with file and options. Warnings, folders and what every shared object
% needs are left out.
%!function compiled = by_cmake()
%!  project = fileparts(fileparts(which('kelvane_build')));
%!  work = tempname();
%!  [status, said] = system(sprintf(['cmake -S "%s" -B "%s" -DKELVANE_BUILD_TESTS=OFF -DCMAKE_EXPORT_COMPILE_COMMANDS=ON ', ...
%!                                   '2>&1'], project, work));
%!  assert(status == 0, '%s', said);
%!  commands = jsondecode(fileread(fullfile(work, 'compile_commands.json')));
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(work, 's');
%!  project = canonicalize_file_name(project);
%!  compiled = struct('file', strrep({commands.file}, [project, '/'], ''), ...
%!                    'options', cellfun(@(c) code_options(strsplit(c)), {commands.command}, 'UniformOutput', false));
%!  compiled(~cellfun(@isempty, strfind({compiled.file}, 'kelvane_framework'))) = [];  % is in no module
%!  compiled(endsWith({compiled.file}, 'all_in_one.cpp')) = [];  % for tools that read sources
%!endfunction

%!function options = code_options(words)
%!  words = words(~cellfun(@isempty, regexp(words, '^-([fmOD]|std=)')));
%!  options = sort(setdiff(words, {'-fPIC', '-Dkelvane_mex_octave_EXPORTS', '-Dkelvane_engine_octave_EXPORTS'}));
%!endfunction

%!function file = source_of(call)  % relative to the project, which is on the search path
%!  words = strsplit(call{end}, '/project/');
%!  assert(any(strcmp(call, ['-I', words{1}, '/project'])));
%!  file = words{2};
%!endfunction

%!test
%! [~, calls] = kelvane_build('DryRun', true);
%! expected = by_cmake();
%! assert(numel(expected) > 20);
%! files = cellfun(@source_of, calls(1:end - 2), 'UniformOutput', false);
%! assert(sort(files), unique({expected.file}));
%! assert(numel(expected), numel(files) + 1);  % CMake compiles old_libraries.cpp for each module
%! for i = 1:numel(expected)
%!   call = calls{strcmp(files, expected(i).file)};
%!   assert(code_options(call), expected(i).options, expected(i).file);
%! end

%!test  % MATLAB's mex takes the options of a file in a variable, and names the compiled file itself
%! start = cd(fullfile(fileparts(which('kelvane_build')), 'private'));
%! back = onCleanup(@() cd(start));
%! modules = struct('name', {'first', 'second'}, 'sources', {{'one.cpp', 'a/one.cpp'}, {'a/one.cpp', 'b/one.cpp'}});
%! places = struct('project', '/my project', 'objects', 'objects', 'output', 'my output', 'suffix', '_1');
%! [calls, steps] = build_calls('matlab', modules, {'-O3', '-DNDEBUG'}, places);
%! assert(steps, {'one.cpp', 'a/one.cpp', 'b/one.cpp', 'linking first', 'linking second'});
%! assert(calls{2}, {'-c', 'CXXFLAGS=$CXXFLAGS -O3 -DNDEBUG', 'CXXOPTIMFLAGS=', '-R2017b', '-silent', '-outdir', 'objects/a', ...
%!                   '-I/my project', '/my project/a/one.cpp'});
%! linking = {'-R2017b', '-silent', '-outdir', 'my output', '-output'};
%! assert(calls(4:5), {[linking, {'first_1', 'objects/one.o', 'objects/a/one.o'}], ...
%!                     [linking, {'second_1', 'objects/a/one.o', 'objects/b/one.o'}]});
%! places = build_places('matlab', '/my project', 'my output');
%! assert({places.project, places.output}, {'/my project', 'my output'});
