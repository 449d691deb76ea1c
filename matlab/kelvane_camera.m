% KELVANE_CAMERA  Describe a camera with its lens, in the words of COLMAP, OpenCV, MATLAB or BAL.
%
%   camera = kelvane_camera(model, parameters)
%   camera = kelvane_camera(intrinsics)
%   camera = kelvane_camera(intrinsics, coefficients)
%   camera = kelvane_camera(intrinsics, coefficients, 'fisheye')
%   camera = kelvane_camera(..., 'ImageSize', [width height])
%   [model, parameters] = kelvane_camera(camera, 'colmap')
%   [K, coefficients, kind] = kelvane_camera(camera, 'opencv')
%
%   kelvane_refine, kelvane_batch, kelvane_project, kelvane_undistort and kelvane_distort take the camera where they take
%   intrinsics; kelvane_read_colmap and kelvane_read_bal return it. The last two calls are the way back.
%
%   Inputs:
%     model         one of the names below
%     parameters    a vector, in the model's order; focal lengths and principal point in pixels, the others without unit
%     intrinsics    [f cx cy], [fx fy cx cy], 3 x 3 K = [fx s cx; 0 fy cy; 0 0 1], or MATLAB's cameraIntrinsics or
%                   cameraParameters with their distortion
%     coefficients  4, 5, 8, 12 or 14 in OpenCV's order k1 k2 p1 p2 k3 k4 k5 k6 s1 s2 s3 s4 tau_x tau_y; with 'fisheye'
%                   the 4 of cv::fisheye. [] for none.
%
%   model                    parameters
%     'SIMPLE_PINHOLE'         f cx cy
%     'PINHOLE'                fx fy cx cy
%     'SIMPLE_RADIAL'          f cx cy k1
%     'RADIAL'                 f cx cy k1 k2
%     'OPENCV'                 fx fy cx cy k1 k2 p1 p2
%     'FULL_OPENCV'            fx fy cx cy k1 k2 p1 p2 k3 k4 k5 k6
%     'OPENCV_FISHEYE'         fx fy cx cy k1 k2 k3 k4
%     'SIMPLE_RADIAL_FISHEYE'  f cx cy k1
%     'RADIAL_FISHEYE'         f cx cy k1 k2
%     'FOV'                    fx fy cx cy omega, omega in radians, below pi
%     'THIN_PRISM_FISHEYE'     fx fy cx cy k1 k2 p1 p2 k3 k4 s1 s3
%     'BAL'                    f k1 k2, of Bundle Adjustment in the Large: looks down -z of its camera frame, y up
%     'GENERAL_PERSPECTIVE'    fx fy cx cy s and the 14 of OpenCV
%     'GENERAL_FISHEYE'        fx fy cx cy s k1 k2 k3 k4
%   All but the last three are COLMAP's. fisheyeIntrinsics is none of them and is refused.
%
%   Options:
%     'ImageSize'  [width height] of the picture, pixels: warns where the lens folds back before the corners, which are at
%                  (0, 0) and [width height], of BAL's cameras at half of it from (0, 0). By default that of an object that
%                  knows it, else not looked at.
%
%   Outputs:
%     camera        struct with the fields
%       model, parameters  as above: of intrinsics those of the simplest model that holds them
%       image_size         [width height], or []
%       fold               the largest angle to the axis at which a point has an image, radians: pi / 2 for a perspective and
%                          pi for a fisheye, or less where the picture would fold back
%     K             3 x 3
%     coefficients  4, 5, 8, 12 or 14 for kind 'perspective', 4 for 'fisheye'
%
%   Example:
%     >> camera = kelvane_camera('OPENCV', [800 810 320 240, -0.3 0.1 1e-3 -2e-3]);
%     >> pixels = kelvane_project(eye(4), [0 1; 0 1; 2 5], camera, 'PoseFrame', 'camera_from_world')
%     pixels =
%        320.00   476.07
%        240.00   398.22
%     >> [K, coefficients] = kelvane_camera(camera, 'opencv')
%     K =
%        800     0   320
%          0   810   240
%          0     0     1
%     coefficients =
%       -3.0000e-01   1.0000e-01   1.0000e-03  -2.0000e-03
%
%
%   See also kelvane_undistort, kelvane_distort, kelvane_project, kelvane_refine.

% SPDX-License-Identifier: BSD-3-Clause
% The one constructor of cameras, and its inverse.
function [camera, second, third] = kelvane_camera(value, varargin)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_camera needs a model and its parameters, or intrinsics.');
  end
  if nargin == 2 && is_text(varargin{1}) && any(strcmpi(varargin{1}, {'colmap', 'opencv'}))
    [camera, second, third] = call_engine('camera_as', plain_object(value, 'cameraIntrinsics'), lower(char(varargin{1})));
    return;
  end
  coefficients = [];
  kind = '';
  if ~isempty(varargin) && ~is_text(varargin{1}) && ~isstruct(varargin{1})
    coefficients = varargin{1};
    varargin(1) = [];
  end
  if mod(numel(varargin), 2) == 1 && is_text(varargin{1}) && ~strcmpi(varargin{1}, 'ImageSize')
    kind = lower(char(varargin{1}));
    varargin(1) = [];
  end
  options = parse_options('kelvane_camera', struct('ImageSize', image_size_of(value)), varargin);
  if is_text(value)
    value = char(value);
  else
    value = plain_object(value, 'cameraIntrinsics');
  end
  [camera, folded] = call_engine('camera', value, coefficients, kind, options.ImageSize);
  if ~isempty(folded)
    warning('kelvane:fold', '%s', folded);
  end
end

function is = is_text(value)
  is = ischar(value) || isa(value, 'string');
end

% [width height] that an object knows: MATLAB's count rows first.
function image_size = image_size_of(value)
  image_size = [];
  if isnumeric(value) || is_text(value)
    return;
  end
  try
    if isfield(value, 'image_size')
      image_size = value.image_size;
    elseif numel(value.ImageSize) == 2
      image_size = value.ImageSize([2, 1]);
    end
  catch  % no such object
  end
end

%!test  % COLMAP's models are told back as they came
%! models = {'SIMPLE_PINHOLE', 1:3; 'PINHOLE', 1:4; 'SIMPLE_RADIAL', 1:4; 'RADIAL', 1:5; 'OPENCV', 1:8; ...
%!           'FULL_OPENCV', 1:12; 'OPENCV_FISHEYE', 1:8; 'SIMPLE_RADIAL_FISHEYE', 1:4; 'RADIAL_FISHEYE', 1:5; ...
%!           'FOV', [1:4, 0.5]; 'THIN_PRISM_FISHEYE', 1:12};
%! for k = 1:rows(models)
%!   camera = kelvane_camera(models{k, :});
%!   assert({camera.model, camera.parameters}, models(k, :));
%!   [model, parameters] = kelvane_camera(camera, 'colmap');
%!   assert({model, parameters}, models(k, :));
%!   assert(kelvane_camera(camera), camera);
%! end

%!test  % OpenCV's coefficients come back, and of other cameras as few as hold them
%! K = [700 0 320; 0 650 240; 0 0 1];
%! all = [-0.1 0.02 1e-3 2e-3 0.03 0.01 0.02 0.03 1e-3 2e-3 3e-3 4e-3 0.01 0.02];
%! for n = [4 5 8 12 14]
%!   [K_back, coefficients, kind] = kelvane_camera(kelvane_camera(K, all(1:n)), 'opencv');
%!   assert(K_back, K);
%!   assert(coefficients, all(1:n));
%!   assert(kind, 'perspective');
%! end
%! [K_back, coefficients, kind] = kelvane_camera(kelvane_camera(2 * K, all(1:4), 'fisheye'), 'opencv');
%! assert({K_back, coefficients, kind}, {K, all(1:4), 'fisheye'});
%! assert(kelvane_camera([700 650 320 240], all(1:4)').model, 'OPENCV');
%! assert(kelvane_camera([700 320 240], all(1:4), 'Fisheye').model, 'OPENCV_FISHEYE');
%! skewed = K + [0 5 0; 0 0 0; 0 0 0];
%! assert(kelvane_camera(skewed, all(1:4)).model, 'GENERAL_PERSPECTIVE');
%! assert(kelvane_camera(kelvane_camera(skewed, all(1:4), 'fisheye'), 'opencv'), skewed);
%! [~, radial] = kelvane_camera(kelvane_camera('SIMPLE_RADIAL', [700 1 2 0.1]), 'opencv');
%! assert(radial, [0.1 0 0 0]);
%! assert(kelvane_camera([700 320 240]).model, 'SIMPLE_PINHOLE');
%! assert(kelvane_camera(K).model, 'PINHOLE');

%!test  % MATLAB's objects, with two or three radial coefficients, and their size of the picture
%! object = struct('FocalLength', [700 650], 'PrincipalPoint', [300 250], 'Skew', 0, 'RadialDistortion', [-0.1 0.02], ...
%!                 'TangentialDistortion', [1e-3 2e-3], 'ImageSize', [480 640]);
%! camera = kelvane_camera(object);
%! assert(camera.model, 'OPENCV');
%! assert(camera.parameters, [700 650 300 250 -0.1 0.02 1e-3 2e-3]);
%! assert(camera.image_size, [640 480]);
%! object.RadialDistortion = [-0.1 0.02 0.003];
%! assert(kelvane_camera(object).parameters, [700 650 300 250 -0.1 0.02 1e-3 2e-3 0.003 0 0 0]);
%! object.Skew = 3;
%! assert(kelvane_camera(object).model, 'GENERAL_PERSPECTIVE');
%! object.TangentialDistortion = [0 0];
%! object.RadialDistortion = [0 0];
%! [K, coefficients] = kelvane_camera(kelvane_camera(object), 'opencv');
%! assert(K, [700 3 300; 0 650 250; 0 0 1]);
%! assert(coefficients, [0 0 0 0]);

%!test  % the fold is told as an angle, and warned of once where it lies in the picture
%! lens = {'SIMPLE_RADIAL', [300 100 75 -1/3]};
%! [~] = lastwarn('', '');
%! assert(kelvane_camera(lens{:}).fold, pi / 4, 1e-14);
%! assert(kelvane_camera(lens{:}, 'ImageSize', [200 150]).fold, pi / 4, 1e-14);
%! assert(lastwarn(), '');
%! assert(kelvane_camera([1 2 3]).fold, pi / 2, 1e-12);
%! assert(kelvane_camera('OPENCV_FISHEYE', [1 1 0 0 0 0 0 0]).fold, pi);
%!warning <from about 200 pixels around the principal point on, at 45 degrees> kelvane_camera('SIMPLE_RADIAL', [300 100 75 -1/3], 'ImageSize', [640 480]);
%!test  % BAL's pixels count from the middle of the picture
%! [~] = lastwarn('', '');
%! kelvane_camera('BAL', [500 -1/3 0], 'ImageSize', [500 400]);  % 320 to the corner, 333 to the fold
%! assert(lastwarn(), '');
%!warning <from about 333.3 pixels> kelvane_camera('BAL', [500 -1/3 0], 'ImageSize', [540 400]);
%!warning <from about 0 pixels around the principal point on> kelvane_camera(eye(3), [zeros(1, 12), 2, 0]);
%!test  % so narrow a field of view is a pinhole's
%! points = [0.1 -0.2; 0.3 0.5; 1 2];
%! narrow = kelvane_camera('FOV', [700 650 320 240 1e-310]);
%! assert(narrow.fold, pi / 2, 1e-12);
%! assert(kelvane_distort(points, narrow), kelvane_distort(points, [700 650 320 240]), 1e-10);
%!error <coefficients must be numbers; this is of class cell> kelvane_camera([1 2 3], {1, 2, 3, 4})
%!error <parameters must be numbers; this is of class cell> kelvane_camera('RADIAL', {1, 2, 3, 4, 5})
%!error <'perspective' or 'fisheye', but not 'fish'> kelvane_camera([1 2 3], 1:4, 'fish')
%!error <says itself whether it is a fisheye; 'fisheye' goes with K> kelvane_camera('RADIAL', 1:5, 'fisheye')
%!error <A camera has model and parameters; this struct has no parameters> kelvane_camera(struct('model', 'FOV'))
%!error <A camera has model and parameters; this struct has no model> kelvane_camera(struct('parameters', 1:4))
%!error <must be one camera; this is an array of 2> kelvane_camera(repmat(kelvane_camera([1 2 3]), 1, 2))
%!error <must be one camera; this is an array of 0> kelvane_camera(struct([]))
%!error <must be numbers or one camera; this is of class cell> kelvane_camera({1, 2, 3})
%!error <must be numbers or one camera; this is of class char> kelvane_distort([1; 2; 3], 'RADIAL')
%!error <needs a model> kelvane_camera()
%!error <'RADIALL' is not a camera model. Did you mean 'RADIAL'\?> kelvane_camera('RADIALL', 1:5)
%!error <OPENCV has 8 parameters: fx, fy, cx, cy, k1, k2, p1, p2; here are 3> kelvane_camera('OPENCV', 1:3)
%!error <parameters\(1, 2\) is NaN> kelvane_camera('RADIAL', [1 NaN 3 4 5])
%!error <focal length of 0> kelvane_camera('RADIAL', [0 1 3 4 5])
%!error <OpenCV has 4, 5, 8, 12 or 14 distortion coefficients> kelvane_camera([1 2 3], 1:3)
%!error <A fisheye has 4 coefficients> kelvane_camera([1 2 3], 1:5, 'fisheye')
%!error <A fisheye has 4 coefficients> kelvane_camera([1 2 3], 'fisheye')
%!error <not finite once K is divided> kelvane_camera([1 0 0; 0 1 0; 0 0 1e-320])
%!error <parameters must be a vector; this is 2 x 2> kelvane_camera('PINHOLE', eye(2))
%!error <have a lens already> kelvane_camera(kelvane_camera('FOV', [1 1 0 0 1]), 1:4)
%!error <\[\] stands for directions> kelvane_camera([])
%!error <ImageSize must be \[width height\]> kelvane_camera([1 2 3], 'ImageSize', 5)
%!error <'Size' is not an option of kelvane_camera> kelvane_camera([1 2 3], 'Size', [5 6])
%!error <COLMAP has no camera like this BAL> kelvane_camera(kelvane_camera('BAL', [1 0 0]), 'colmap')
%!error <OpenCV has no camera like this FOV> kelvane_camera(kelvane_camera('FOV', [1 1 0 0 1]), 'opencv')
%!error <A fisheyeIntrinsics maps> kelvane_camera(struct('MappingCoefficients', 1:4))
%!error <struct has no FocalLength> kelvane_camera(struct('f', 1))
%!error <RadialDistortion must have 2 or 3> kelvane_camera(struct('FocalLength', [1 1], 'PrincipalPoint', [0 0], 'Skew', 0, 'RadialDistortion', 1:4, 'TangentialDistortion', [0 0]))

%!demo
%! % how far a lens moves the pixels of a straight line
%! camera = kelvane_camera('RADIAL', [800 320 240, -0.3 0.1]);
%! line = [linspace(0, 640, 30); 60 * ones(1, 30)];
%! bent = kelvane_distort(line, camera);
%! plot(line(1, :), line(2, :), '--', bent(1, :), bent(2, :), '-o')
%! axis('equal'), axis('ij'), xlabel('u (pixels)'), ylabel('v (pixels)')
%! legend('ideal pixels', 'through the lens')
