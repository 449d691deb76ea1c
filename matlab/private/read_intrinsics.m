% SPDX-License-Identifier: BSD-3-Clause
% A camera from [f cx cy], a 3 x 3 K or MATLAB's cameraIntrinsics: pixel = A * [p1; p2] / p3 + c. Without intrinsics it
% observes unit bearing vectors.
function camera = read_intrinsics(intrinsics)
  if isnumeric(intrinsics)
    intrinsics = checked_numbers(intrinsics, 'intrinsics');
    if isempty(intrinsics)
      K = eye(3);
    elseif isvector(intrinsics) && numel(intrinsics) == 3
      K = [intrinsics(1), 0, intrinsics(2); 0, intrinsics(1), intrinsics(3); 0, 0, 1];
    elseif isequal(size(intrinsics), [3, 3])
      K = checked_matrix(intrinsics);
    else
      error('kelvane:intrinsics', 'intrinsics must be [f cx cy], 3 x 3 or a cameraIntrinsics; this is %d x %d.', ...
            size(intrinsics, 1), size(intrinsics, 2));
    end
  else
    K = matrix_of_object(intrinsics);
  end
  if K(1, 1) == 0 || K(2, 2) == 0
    error('kelvane:intrinsics', 'A focal length of 0 sees everything in one place.');
  end
  camera = struct('bearing', isempty(intrinsics), 'A', K(1:2, 1:2), 'c', K(1:2, 3));
end

function K = checked_matrix(K)
  if isequal(K(1:2, 3), [0; 0]) && any(K(3, 1:2))
    error('kelvane:transposedK', ['K looks transposed: the principal point is in the last row. MATLAB''s IntrinsicMatrix ' ...
          'has it there; hand over its transpose.']);
  end
  if K(3, 3) == 0 || any([K(2, 1), K(3, 1), K(3, 2)])
    error('kelvane:intrinsics', 'K must be upper triangular with K(3, 3) other than 0.');
  end
  K = K / K(3, 3);
end

% By its properties, so that a struct with the same fields (MATLAB's toStruct) is as good.
function K = matrix_of_object(object)
  f = checked_vector(property_of(object, 'FocalLength', 'cameraIntrinsics'), 2, 'FocalLength');
  c = checked_vector(property_of(object, 'PrincipalPoint', 'cameraIntrinsics'), 2, 'PrincipalPoint');
  skew = checked_vector(property_of(object, 'Skew', 'cameraIntrinsics'), 1, 'Skew');
  radial = property_of(object, 'RadialDistortion', 'cameraIntrinsics');
  tangential = property_of(object, 'TangentialDistortion', 'cameraIntrinsics');
  if any([radial(:); tangential(:)])
    error('kelvane:distortion', ['These intrinsics have lens distortion. Remove it from the observations ' ...
          '(undistortPoints), then hand over the intrinsics without it.']);
  end
  K = [f(1), skew, c(1); 0, f(2), c(2); 0, 0, 1];
end
