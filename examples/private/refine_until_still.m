% SPDX-License-Identifier: BSD-3-Clause
% Calls kelvane_mex from a view's start until the pose moves by less than 1e-10, max_calls times at most. The poses are
% the start and what each call returned, one in each row; the time is that of the calls alone.
function [poses, milliseconds] = refine_until_still(view, type, criteria, max_calls)
  x = view.start{representation_of(type)};
  poses = x;
  milliseconds = 0;
  for call = 1:max_calls
    camera = [x, view.intrinsics];
    timer = tic;
    x = kelvane_mex(camera, view.points, view.pixels, criteria, type);
    milliseconds = milliseconds + 1000 * toc(timer);
    poses(end + 1, :) = x; %#ok<AGROW>
    if norm(diff(poses(end - 1:end, :))) < 1e-10
      break;
    end
  end
end
