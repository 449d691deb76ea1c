% SPDX-License-Identifier: BSD-3-Clause
% What `help kelvane_mex` shows.

%!function lines = help_lines()
%!  lines = strsplit(get_help_text('kelvane_mex'), "\n");
%!endfunction

%!test  % it is the binary that runs and the m-file that is shown
%! assert(exist('kelvane_mex'), 3);
%! assert(~isempty(strfind(help_lines(){1}, 'KELVANE_MEX  Refine a camera pose')));

%!test  % the lines fit the m-file
%! text = get_help_text('kelvane_mex');
%! source = fileread(fullfile(fileparts(which('kelvane_mex')), 'kelvane_mex.m'));
%! assert(strncmp(strrep(source, "\n%", "\n"), ['%', text], numel(text)));

%!test  % the example runs as printed
%! lines = help_lines();
%! first = find(strncmp(strtrim(lines), 'Example:', 8)) + 1;
%! last = find(strncmp(strtrim(lines), 'See also', 8)) - 1;
%! assert([numel(first), numel(last)], [1, 1]);
%! printed = evalc(strjoin(lines(first:last), "\n"));
%! assert(printed, sprintf('turn 0.000000 rad, centre (0.100000, -0.200000, -4.000000)\n'));

%!test  % every rotation type is listed
%! text = get_help_text('kelvane_mex');
%! for entry = {' 0  aau ', ' 1  aan ', ' 2  qu ', ' 3  qn ', '10  aau-bv', '11  aan-bv', '12  qu-bv', ...
%!              '-1  qu,aau,aan', '-2  aau,qu,aan', '-3  aan,qu,aau'}
%!   assert(numel(strfind(text, entry{1})), 1);
%! end

%!test  % without the binary the m-file says how to get it
%! folder = tempname();
%! mkdir(folder);
%! copy = fopen(fullfile(folder, 'kelvane_unbuilt.m'), 'w');
%! fputs(copy, fileread(fullfile(fileparts(which('kelvane_mex')), 'kelvane_mex.m')));
%! fclose(copy);
%! addpath(folder);
%! cleanup = onCleanup(@() rmpath(folder));
%! try
%!   kelvane_unbuilt(1);
%!   message = '';
%! catch problem
%!   message = problem.message;
%!   assert(problem.identifier, 'kelvane:notBuilt');
%! end
%! assert(strncmp(message, 'The compiled function kelvane_mex', 33));
%! assert(~isempty(strfind(message, 'kelvane_build')) && exist('kelvane_build', 'file') == 2);
%! assert(~isempty(strfind(message, 'cmake --preset release')));
%! confirm_recursive_rmdir(false, 'local');
%! rmdir(folder, 's');
