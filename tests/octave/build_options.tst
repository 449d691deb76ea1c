% SPDX-License-Identifier: BSD-3-Clause
% kelvane_build compiles the same sources as CMake, each with the same options.

%!function options = code_options(words)
%!  words = words(~cellfun(@isempty, regexp(words, '^-([fmOD]|std=)')));
%!  options = sort(setdiff(words, {'-fPIC', '-Dkelvane_mex_octave_EXPORTS', '-Dkelvane_engine_octave_EXPORTS'}));
%!endfunction

%!test  % warnings, folders and what every shared object needs are left aside; so is what is in no module
%! project = canonicalize_file_name(fileparts(fileparts(which('kelvane_build'))));
%! work = tempname();
%! settings = '-DKELVANE_BUILD_TESTS=OFF -DCMAKE_EXPORT_COMPILE_COMMANDS=ON';
%! [status, said] = system(sprintf('cmake -S "%s" -B "%s" %s 2>&1', project, work, settings));
%! assert(status == 0, '%s', said);
%! by_cmake = jsondecode(fileread(fullfile(work, 'compile_commands.json')));
%! confirm_recursive_rmdir(false, 'local');
%! rmdir(work, 's');
%! expected = struct();
%! for command = by_cmake(cellfun(@isempty, regexp({by_cmake.file}, 'kelvane_framework|all_in_one')))'
%!   expected.(strrep(command.file, [project, '/'], '')) = code_options(strsplit(command.command));
%! end
%! [~, calls] = kelvane_build('DryRun', true);
%! built = struct();
%! for call = calls(1:end - 2)
%!   source = strsplit(call{1}{end}, '/project/');  % a link to the project, which is on the search path
%!   assert(any(strcmp(call{1}, ['-I', source{1}, '/project'])));
%!   built.(source{2}) = code_options(call{1});
%! end
%! assert(numel(fieldnames(built)) > 20);
%! assert(orderfields(built), orderfields(expected));

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
