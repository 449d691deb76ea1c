% SPDX-License-Identifier: BSD-3-Clause
% kelvane_build in folders of any name, on a project of the same files with next to nothing in them.

%!function write_below(folder, file, text)
%!  [~, ~] = mkdir(fullfile(folder, fileparts(file)));
%!  write_text(fullfile(folder, file), text);
%!endfunction

% A project in a folder of its own, with one source in each of its folders; its modules return 42 and 43.
%!function [work, project, removing] = make_project(name)
%!  work = tempname();
%!  removing = onCleanup(@() system(sprintf('rm -r "%s"', work)));
%!  project = fullfile(work, name);
%!  here = fileparts(which('kelvane_build'));
%!  [~, calls] = kelvane_build('DryRun', true);
%!  in_folder = @(call) regexprep(call{end}, '^.*/project/(.*/)?.*', '$1one.cpp');
%!  for file = unique(cellfun(in_folder, calls(1:end - 2), 'UniformOutput', false))
%!    write_below(project, file{1}, sprintf('int %s;\n', strrep(file{1}, '/', '_')(1:end - 4)));
%!  end
%!  entry = ['#include <mex.h>' "\n" '#include "toy/first.h"' "\n", ...
%!           'extern "C" __attribute__((visibility("default"))) void mexFunction(int, mxArray* x[], int, ', ...
%!           'const mxArray**) { x[0] = mxCreateDoubleScalar(%s); }' "\n"];
%!  write_below(project, 'kelvane_mex.cpp', sprintf(entry, 'result'));
%!  write_below(project, 'kelvane_engine.cpp', sprintf(entry, 'result + 1'));
%!  write_below(project, 'old_libraries.cpp', '');
%!  write_below(project, 'toy/first.h', '#include "toy/second.h"');
%!  write_below(project, 'toy/second.h', 'constexpr double result = 42;');
%!  for file = [{'kelvane.build', 'kelvane.map'}, strcat('matlab/kelvane_', {'build.m', 'mex.m', 'engine.m'}), ...
%!              strcat('matlab/private/', readdir(fullfile(here, 'private'))(3:end)')]
%!    write_below(project, file{1}, fileread(fullfile(here, '..', file{1})));
%!  end
%!endfunction

%!function [status, said] = build_from(work, temporary, code)  % in a process of its own there
%!  write_text(fullfile(work, 'go.m'), sprintf(code));
%!  mkdir(work, temporary);
%!  [status, said] = system(sprintf('cd "%s" && TMPDIR="$PWD/%s" octave-cli --norc --no-history -q go.m 2>&1', work, temporary));
%!endfunction

%!test  % project, module and temporary files may lie in folders of any name; where the user is does not matter
%! [work, project, removing] = make_project('o''d k & co; touch ran; $(touch ran) [1]');
%! write_below(work, 'm1/kelvane_mex.mex', 'of somebody else');
%! write_below(work, 'toy/second.h', 'constexpr double result = 44;');  % lies where he is
%! there = sort([readdir(work); {'go.m'; 'm[1]'; 'for files'}]);
%! in_project = readdir(project);
%! code = ['for i = 1:2, addpath([''', strrep(project, '''', ''''''), '/matlab'']); kelvane_build(''Output'', ''m[1]''); end\n', ...
%!         'addpath(''m[1]''); disp([kelvane_mex(), kelvane_engine()])'];
%! [status, said] = build_from(work, 'for files', code);  % the second one finds a module there
%! assert(status == 0 && ~isempty(regexp(said, 'linking.*\n *42 +43\s*$', 'once')), '%s', said);
%! assert(fileread(fullfile(work, 'm1', 'kelvane_mex.mex')), 'of somebody else');
%! assert(sort(readdir(work)), there);
%! assert(numel(readdir(fullfile(work, 'for files'))), 2);
%! assert(readdir(project), in_project);
%! assert(readdir(fullfile(work, 'm[1]'))(3:end)', {'kelvane_engine.mex', 'kelvane_mex.mex'});

%!test  % a source that does not compile: an error, the modules there before stay, and nothing else is left
%! [work, project, removing] = make_project('project');
%! write_below(project, 'mex_engine/one.cpp', 'no C++');
%! write_below(work, 'out/kelvane_mex.mex', 'the last one');
%! [status, said] = build_from(work, 'files', 'addpath project/matlab; kelvane_build(''Output'', ''out'')');
%! assert(status == 1 && ~isempty(strfind(said, 'exited with failure')), '%s', said);
%! assert(fileread(fullfile(work, 'out', 'kelvane_mex.mex')), 'the last one');
%! assert(readdir(fullfile(work, 'out'))(3:end)', {'kelvane_mex.mex'});
%! assert(exist(fullfile(project, 'kelvane.build'), 'file'), 2);  % what the folder of the build led to is there
%! assert(numel(readdir(fullfile(work, 'files'))), 2);

%!error <kelvane.build cannot be made> kelvane_build('Output', fullfile(fileparts(which('kelvane_build')), '../kelvane.build'))
%!error <The module cannot be written to /proc/> kelvane_build('Output', '/proc/self')
