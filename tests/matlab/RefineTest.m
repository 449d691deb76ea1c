classdef RefineTest < matlab.unittest.TestCase
  % SPDX-License-Identifier: BSD-3-Clause
  % The refinement and the module below it, in MATLAB.

  methods (Test)
    function the_module_finds_the_pose(test)
      [start, points, pixels, truth] = RefineTest.scene();
      x = kelvane_mex([start, 500 320 240], points, pixels);
      test.verifyEqual(x, truth, 'AbsTol', 1e-9);
      test.verifyClass(x, 'double');
    end

    function the_module_refuses_sparse_and_complex_points(test)
      [start, points, pixels] = RefineTest.scene();
      camera = [start, 500 320 240];
      test.verifyError(@() RefineTest.one_output(camera, sparse(points), pixels), 'Mex:exception');
      test.verifyError(@() RefineTest.one_output(camera, complex(points, 1), pixels), 'Mex:exception');
    end

    function an_error_leaves_the_module_usable(test)
      [start, points, pixels, truth] = RefineTest.scene();
      camera = [start, 500 320 240];
      for k = 1:1000
        test.verifyError(@() RefineTest.one_output(camera, points, pixels(:, 1:5)), 'Mex:exception');
      end
      test.verifyEqual(kelvane_mex(camera, points, pixels), truth, 'AbsTol', 1e-9);
    end

    function pixels_arrive(test)
      [start, points, pixels, truth] = RefineTest.scene();
      [pose, info] = kelvane_refine(start, points, pixels, [500 320 240], 'PoseFrame', 'world_from_camera');
      test.verifyEqual(pose, truth, 'AbsTol', 1e-9);
      test.verifyGreaterThan(info.exitflag, 0);
    end

    function the_derivatives_of_every_type_of_use_are_right(test)
      [start, points] = RefineTest.scene();
      for type = kelvane_types()
        intrinsics = {[500 320 240], []};
        e = kelvane_check_gradient(start, points, intrinsics{1 + type.bearing}, 'PoseFrame', 'world_from_camera', ...
                                   'RotationType', type.number);
        test.verifyEqual(e < 1e-7, type.number ~= 3);
      end
    end

    function errors_are_those_of_the_function_that_was_called(test)
      [start, points, pixels] = RefineTest.scene();
      points(2, 3) = Inf;
      test.verifyError(@() kelvane_refine(start, points, pixels, [500 320 240], 'PoseFrame', 'world_from_camera'), ...
                       'kelvane:notFinite');
      test.verifyError(@() kelvane_refine(start, points, pixels, [500 320 240], 'RotationType', 2), ...
                       'kelvane:unknownOption');
    end

    function bearings_arrive(test)
      [start, points, ~, truth] = RefineTest.scene();
      bearings = kelvane_project(truth, points, [], 'PoseFrame', 'world_from_camera');
      pose = kelvane_refine(start, points, bearings, [], 'PoseFrame', 'world_from_camera');
      test.verifyEqual(pose, truth, 'AbsTol', 1e-8);
    end

    function an_outlier_is_told_with_a_robust_loss(test)
      [start, points, pixels, truth] = RefineTest.scene();
      points = [points, points / 2];
      pixels = kelvane_project(truth, points, [500 320 240], 'PoseFrame', 'world_from_camera');
      pixels(:, 3) = pixels(:, 3) + 80;
      [pose, info] = kelvane_refine(start, points, pixels, [500 320 240], 'PoseFrame', 'world_from_camera', ...
                                    'Loss', 'tukey', 'LossScale', 2);
      test.verifyEqual(pose, truth, 'AbsTol', 1e-6);
      test.verifyEqual(find(~info.inliers), 3);
    end
  end

  methods (Static)
    function [start, points, pixels, truth] = scene()
      points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
      truth = [0.3 -0.5 0.2, 0.1 -0.2 -4];
      start = truth + [0.02 -0.03 0.01, 0.1 0.1 0.2];
      pixels = kelvane_project(truth, points, [500 320 240], 'PoseFrame', 'world_from_camera');
    end

    % An anonymous function asks for no output, which is an error of its own.
    function x = one_output(varargin)
      x = kelvane_mex(varargin{:});
    end
  end
end
