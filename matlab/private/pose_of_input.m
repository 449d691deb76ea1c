% SPDX-License-Identifier: BSD-3-Clause
% The struct of a pose that was handed over with the options PoseForm and PoseFrame, and its form and frame.
function [pose, form, frame] = pose_of_input(value, options)
  form = options.PoseForm;
  if isempty(form)
    form = guessed_form(value);
  end
  [form, frame] = form_and_frame(form, options.PoseFrame);
  pose = read_pose(value, form, frame);
end
