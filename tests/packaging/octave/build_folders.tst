% SPDX-License-Identifier: BSD-3-Clause
% kelvane_build in folders of any name, on a project of the same files with next to nothing in them.

%!function [work, removing] = work_folder()
%!  work = tempname();
%!  mkdir(work);
%!  removing = onCleanup(@() remove(work));
%!endfunction

%!function remove(work)
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(work, 's');
%!endfunction

%!function names = names_in(folder)
%!  names = setdiff(readdir(folder), {'.', '..'})';
%!endfunction

%!function write_below(folder, file, text)
%!  [~, ~] = mkdir(fullfile(folder, fileparts(file)));
%!  write_text(fullfile(folder, file), text);
%!endfunction

%!function make_project(folder)  % with one source in each of its folders; its modules return 42 and 43
%!  here = fileparts(which('kelvane_build'));
%!  [~, calls] = kelvane_build('DryRun', true);
%!  files = cellfun(@(call) regexprep(call{end}, '^.*/project/', ''), calls(1:end - 2), 'UniformOutput', false);
%!  [~, one_each] = unique(cellfun(@fileparts, files, 'UniformOutput', false));
%!  assert(numel(one_each) > 5);
%!  for file = [files(one_each), {'old_libraries.cpp'}]
%!    write_below(folder, file{1}, sprintf('int %s;\n', regexprep(file{1}, '[/.]', '_')));
%!  end
%!  entry = ['#include <mex.h>' "\n" '#include "toy/first.h"' "\n", ...
%!           'extern "C" __attribute__((visibility("default"))) void mexFunction(int, mxArray* x[], int, ', ...
%!           'const mxArray**) { x[0] = mxCreateDoubleScalar(%s); }' "\n"];
%!  write_below(folder, 'kelvane_mex.cpp', sprintf(entry, 'result'));
%!  write_below(folder, 'kelvane_engine.cpp', sprintf(entry, 'result + 1'));
%!  write_below(folder, 'toy/first.h', '#include "toy/second.h"');
%!  write_below(folder, 'toy/second.h', 'constexpr double result = 42;');
%!  for file = [{'kelvane.build', 'kelvane.map'}, strcat('matlab/kelvane_', {'build.m', 'mex.m', 'engine.m'}), ...
%!              strcat('matlab/private/', names_in(fullfile(here, 'private')))]
%!    write_below(folder, file{1}, fileread(fullfile(here, '..', file{1})));
%!  end
%!endfunction

%!function said = build_from(project, varargin)  % with its own kelvane_build
%!  matlab = fullfile(project, 'matlab');
%!  warning('off', 'Octave:shadowed-function', 'local');
%!  addpath(matlab);
%!  restoring = onCleanup(@() rmpath(matlab));
%!  said = evalc('kelvane_build(varargin{:});');
%!endfunction

%!test  % the project, the folder of the module and that for temporary files may have any name; none is taken for a pattern
%! [work, removing] = work_folder();
%! project = fullfile(work, 'o''d k & co; touch ran; $(touch ran) [1]');
%! make_project(project);
%! mkdir(work, 'for files');
%! before = getenv('TMPDIR');
%! setting = onCleanup(@() setenv('TMPDIR', before));
%! setenv('TMPDIR', fullfile(work, 'for files'));
%! write_below(work, 'm1/kelvane_mex.mex', 'of somebody else');
%! in_project = names_in(project);
%! for round = 1:2  % the second one finds a module there
%!   said = build_from(project, 'Output', fullfile(work, 'm[1]'));
%!   assert(~isempty(strfind(said, 'linking')));
%!   assert(names_in(fullfile(work, 'm[1]')), {'kelvane_engine.mex', 'kelvane_mex.mex'});
%! end
%! assert(fileread(fullfile(work, 'm1', 'kelvane_mex.mex')), 'of somebody else');
%! assert(names_in(work), {'for files', 'm1', 'm[1]', project(numel(work) + 2:end)});
%! assert(names_in(fullfile(work, 'for files')), cell(1, 0));
%! assert(names_in(project), in_project);
%! run_it = sprintf('octave-cli --norc -q --path "%s" --eval "disp([kelvane_mex(), kelvane_engine()])"', ...
%!                  fullfile(work, 'm[1]'));
%! [status, printed] = system(run_it);
%! assert(strsplit(strtrim(printed)), {'42', '43'});

%!test  % a source that does not compile: an error, the modules there before stay, and nothing else is left
%! [work, removing] = work_folder();
%! project = fullfile(work, 'project');
%! make_project(project);
%! write_below(project, 'mex_engine/last.cpp', 'no C++');
%! write_below(work, 'out/kelvane_mex.mex', 'the last one');
%! fail('build_from(project, ''Output'', fullfile(work, ''out''))', 'exited with failure');
%! assert(fileread(fullfile(work, 'out', 'kelvane_mex.mex')), 'the last one');
%! assert(names_in(fullfile(work, 'out')), {'kelvane_mex.mex'});
%! assert(any(strcmp(names_in(project), 'kelvane.build')));  % what the folder of the build led to is there

%!test  % a folder that cannot be had is named before anything is compiled
%! [work, removing] = work_folder();
%! write_text(fullfile(work, 'file'), 'mine');
%! fail('kelvane_build(''Output'', fullfile(work, ''file''))', 'file cannot be made');
%! fail('kelvane_build(''Output'', ''/proc/self'')', 'The module cannot be written to /proc/');

%!test  % where the user is does not matter: folders of the path that begin there stay, headers that lie there are not taken
%! [work, removing] = work_folder();
%! make_project(fullfile(work, 'project'));
%! write_below(work, 'toy/second.h', 'constexpr double result = 43;');
%! code = 'kelvane_build(''Output'', ''out'', ''Display'', ''off''); addpath(''out''); disp(kelvane_mex())';
%! [status, said] = system(sprintf('cd "%s" && octave-cli --norc -q --path project/matlab --eval "%s" 2>&1', work, code));
%! assert(status == 0 && any(strcmp(strsplit(said, "\n"), '42')) && isempty(strfind(said, 'load')), '%s', said);
