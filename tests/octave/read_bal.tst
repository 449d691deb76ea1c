% SPDX-License-Identifier: BSD-3-Clause
% kelvane_read_bal on broken files.

%!function message = message_with(text)
%!  file = tempname();
%!  removing = onCleanup(@() delete(file));
%!  write_text(file, text);
%!  message = strrep(message_of(@() kelvane_read_bal(file)), file, 'FILE');
%!endfunction

%!test
%! good = sprintf('1 1 2\n0 0 1 2\n0 0 3 4\n%s', sprintf('%d\n', 0, 0, 0, 0, 0, -5, 700, 0, 0, 1, 2, 3));
%! assert(message_with(good), '');
%! cases = {
%!   '', 'FILE, line 1, column 1: a file begins with three whole numbers'
%!   sprintf('1 1\n'), 'FILE, line 1, column 1: a file begins with three whole numbers'
%!   strrep(good, '1 1 2', '1 1.5 2'), 'FILE, line 1, column 1: a file begins with three whole numbers'
%!   strrep(good, '0 0 3 4', '0 0 3 four'), 'FILE, line 3, column 7: ''four'' is not a number.'
%!   strrep(good, '0 0 3 4', '0 0 Inf 4'), 'FILE, line 3, column 5: ''Inf'' is not a finite number.'
%!   strrep(good, '0 0 3 4', '0 1 3 4'), 'FILE, line 3, column 3: there is no point 1; the last one is 0.'
%!   strrep(good, '0 0 3 4', '1 0 3 4'), 'FILE, line 3, column 1: there is no camera 1; the last one is 0.'
%!   strrep(good, '0 0 3 4', '-1 0 3 4'), 'FILE, line 3, column 1: there is no camera -1; the last one is 0.'
%!   strrep(good, '700', '-700'), 'FILE, line 10, column 1: the focal length of camera 0 is -700; it must be above 0.'
%!   good(1:end - 2), 'FILE, line 14, column 2: the file ends after 22 of 23 numbers.'
%!   [good, sprintf('\n8\n')], 'FILE, line 17, column 1: 24 numbers are more than the 23 that the first line announces.'
%!   'BZh91AY', 'FILE is compressed. Run bunzip2 on it first.'};
%! for k = 1:size(cases, 1)
%!   message = message_with(cases{k, 1});
%!   assert(strncmp(message, cases{k, 2}, numel(cases{k, 2})), [message, ' instead of ', cases{k, 2}]);
%! end

%!test  % numbers may be on any lines, with the line ends of Windows
%! file = tempname();
%! removing = onCleanup(@() delete(file));
%! write_text(file, sprintf('1 1\r\n1 0 0\r\n-30 40 0 0 0\r\n0 0 0 100 0 0 -3 4 -10\r\n'));
%! problem = kelvane_read_bal(file);
%! assert({problem.observations, problem.points}, {[-30; 40], [-3; 4; -10]});
