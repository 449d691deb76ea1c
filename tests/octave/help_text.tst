% SPDX-License-Identifier: BSD-3-Clause
% What `help` shows of the modules.

%!function lines = help_lines(name)
%!  lines = strsplit(get_help_text(name), "\n");
%!endfunction

%!test  % it is the binary that runs and the m-file that is shown
%! assert([exist('kelvane_mex'), exist('kelvane_engine')], [3, 3]);
%! assert(~isempty(strfind(help_lines('kelvane_mex'){1}, 'KELVANE_MEX  Refine a camera pose')));
%! assert(~isempty(strfind(help_lines('kelvane_engine'){1}, 'KELVANE_ENGINE  The compiled engine')));

%!test  % the lines fit the m-file
%! for name = {'kelvane_mex', 'kelvane_engine'}
%!   text = get_help_text(name{1});
%!   source = fileread(fullfile(fileparts(which(name{1})), [name{1}, '.m']));
%!   assert(strncmp(strrep(source, "\n%", "\n"), ['%', text], numel(text)));
%! end

%!test  % the example runs as printed
%! code = regexp(get_help_text('kelvane_mex'), '^ *>> (.*)$', 'tokens', 'lineanchors', 'dotexceptnewline');
%! assert(numel(code), 7);
%! printed = evalc(strjoin([code{:}], "\n"));
%! assert(printed, sprintf('turn 0.000000 rad, centre (0.100000, -0.200000, -4.000000)\n'));

%!test  % every rotation type is listed
%! text = get_help_text('kelvane_mex');
%! for entry = {' 0  aau ', ' 1  aan ', ' 2  qu ', ' 3  qn ', '10  aau-bv', '11  aan-bv', '12  qu-bv', ...
%!              '-1  qu,aau,aan', '-2  aau,qu,aan', '-3  aan,qu,aau'}
%!   assert(numel(strfind(text, entry{1})), 1);
%! end

%!function problem = without_binary(name)  % what a copy of its m-file says
%!  folder = tempname();
%!  mkdir(folder);
%!  copy = fopen(fullfile(folder, 'kelvane_unbuilt.m'), 'w');
%!  fputs(copy, fileread(fullfile(fileparts(which(name)), [name, '.m'])));
%!  fclose(copy);
%!  warning('off', 'Octave:function-name-clash', 'local');
%!  addpath(folder);
%!  cleanup = onCleanup(@() rmpath(folder));
%!  problem = struct('identifier', '', 'message', '');
%!  try
%!    kelvane_unbuilt(1);
%!  catch problem
%!  end
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(folder, 's');
%!endfunction

%!test  % without the binary the m-file says how to get it
%! for name = {'kelvane_mex', 'kelvane_engine'}
%!   problem = without_binary(name{1});
%!   assert(problem.identifier, 'kelvane:notBuilt');
%!   assert(strncmp(problem.message, ['The compiled function ', name{1}, ' ('], 23 + numel(name{1})));
%!   assert(~isempty(strfind(problem.message, 'kelvane_build')) && exist('kelvane_build', 'file') == 2);
%!   assert(~isempty(strfind(problem.message, 'cmake --preset release')));
%! end
