% SPDX-License-Identifier: BSD-3-Clause
% Which of two faults in one call is reported: always the earlier check's.

%!function line = cited_line(message)
%!  line = str2double(regexp(message, 'kelvane_mex\.cpp\((\d+)\)', 'tokens', 'once'){1});
%!endfunction

% Faults in the order of their checks: line, input, value.
%!function faults = all_faults()
%!  faults = {1764, 5, 'a'; 1773, 5, 4; 1790, 1, single(1:9); 1793, 1, zeros(3, 3); 1797, 1, zeros(1, 8); ...
%!            1804, 2, {}; 1807, 2, zeros(2, 4); 1818, 3, @sin; 1822, 3, zeros(3, 4); 1831, 4, '1234'; ...
%!            1834, 4, zeros(2, 2); 1837, 4, zeros(1, 5); 1868, 6, ones(1, 3)};
%!endfunction

%!test  % each fault alone is reported by its own check
%! faults = all_faults();
%! for i = 1:rows(faults)
%!   assert(cited_line(caught(with(faults{i, 2:3}))), faults{i, 1});
%! end

%!test  % of two faults in different inputs the earlier is reported
%! faults = all_faults();
%! pairs = 0;
%! for i = 1:rows(faults)
%!   for j = i + 1:rows(faults)
%!     if faults{i, 2} == faults{j, 2}
%!       continue;
%!     end
%!     assert(cited_line(caught(with(faults{i, 2:3}, faults{j, 2:3}))), faults{i, 1});
%!     pairs = pairs + 1;
%!   end
%! end
%! assert(pairs, 13 * 12 / 2 - 9);

%!test  % within one input the class is checked first, then the shape, then the length
%! assert(cited_line(caught(with(5, single(4)))), 1764);
%! assert(cited_line(caught(with(5, [4; 4]))), 1764);
%! assert(cited_line(caught(with(1, single(zeros(3, 3))))), 1790);
%! assert(cited_line(caught(with(1, zeros(2, 2)))), 1793);
%! assert(cited_line(caught(with(2, single(zeros(2, 2))))), 1804);
%! assert(cited_line(caught(with(3, single(zeros(2, 2))))), 1818);
%! assert(cited_line(caught(with(4, single(zeros(2, 3))))), 1831);
%! assert(cited_line(caught(with(4, zeros(2, 3)))), 1834);

%!test  % the arguments are checked before the refinement starts
%! assert(cited_line(caught(with(2, zeros(3, 0), 3, zeros(2, 0), 6, 1))), 1868);
