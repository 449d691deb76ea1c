classdef HostTest < matlab.unittest.TestCase
  % SPDX-License-Identifier: BSD-3-Clause
  % What concerns MATLAB alone: its own classes as inputs, its help, its completion.

  methods (Test)
    function strings_are_names_too(test)
      test.assumeNotEmpty(which('string'), 'A class of MATLAB.');
      value = kelvane_pose(eye(4), string('matrix4x4'), string('world_from_camera'));
      test.verifyEqual(value.centre, [0; 0; 0]);
    end

    function a_pose_goes_through_rigidtform3d_and_back(test)
      test.assumeNotEmpty(which('rigidtform3d'), 'From R2022b on, with the Image Processing Toolbox.');
      pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
      object = kelvane_pose(pose, 'rigidtform3d', 'world_from_camera');
      test.verifyClass(object, 'rigidtform3d');
      test.verifyEqual(kelvane_pose(object, 'rigidtform3d', 'world_from_camera').rotation, pose.rotation, 'AbsTol', 1e-14);
      test.verifyEqual(object.transformPointsForward([0 0 0]), pose.centre', 'AbsTol', 1e-14);
    end

    function intrinsics_are_taken_from_the_object(test)
      test.assumeNotEmpty(which('cameraIntrinsics'), 'Of the Computer Vision Toolbox.');
      object = cameraIntrinsics([700 650], [300 250], [480 640]);
      pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
      K = [700 0 300; 0 650 250; 0 0 1];
      test.verifyEqual(kelvane_project(pose, eye(3), object), kelvane_project(pose, eye(3), K), 'AbsTol', 1e-10);
    end

    function the_binary_runs_and_the_help_is_shown(test)
      test.verifyEqual(exist('kelvane_mex'), 3); %#ok<EXIST>
      test.verifyNotEmpty(strfind(help('kelvane_mex'), 'Refine a camera pose')); %#ok<STREMP>
    end

    function the_signatures_are_valid(test)
      test.assumeNotEmpty(which('validateFunctionSignaturesJSON'), 'A function of MATLAB.');
      file = fullfile(fileparts(which('kelvane_refine')), 'functionSignatures.json');
      test.verifyEmpty(validateFunctionSignaturesJSON(file));
    end
  end
end
