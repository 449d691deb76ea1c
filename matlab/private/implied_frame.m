% SPDX-License-Identifier: BSD-3-Clause
% The frame that a form of pose_forms implies, '' for none.
function frame = implied_frame(form)
  forms = pose_forms();
  frame = forms(strcmp(one_of(form, {forms.name}, 'kelvane:poseForm', 'form of a pose'), {forms.name})).frame;
end
