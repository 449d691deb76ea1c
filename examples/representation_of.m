% REPRESENTATION_OF  How kelvane_mex reads the rotation of a pixel type.
%
%   k = representation_of(type)
%
%   type is one of the rotation types 0 to 3 and -1 to -3; k is 1 for a rotation vector, 2 for an angle-axis and 3 for a
%   quaternion. A hybrid type has the representation that its name begins with.
%
%   Example
%     view = chessboard_view(1);
%     x = view.start{representation_of(-2)};
%
%   See also kelvane_mex, chessboard_view.

% SPDX-License-Identifier: BSD-3-Clause
% The representation of the search vector of each pixel type.
function k = representation_of(type)
  switch type
    case {0, -2}
      k = 1;
    case {1, -3}
      k = 2;
    case {2, 3, -1}
      k = 3;
    otherwise
      error('kelvane:examples', 'Type %g does not predict pixels.', type);
  end
end
