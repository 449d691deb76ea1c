% SPDX-License-Identifier: BSD-3-Clause
% Options with full names of what to display, of forms and of frames.
function options = with_names(options)
  if ~isequal(options.Display, 'off')
    options.Display = one_of(options.Display, {'off', 'iter', 'final'}, 'kelvane:option', 'Display');
  end
  for name = {'PoseForm', 'OutputForm'}
    if isfield(options, name{1}) && ~isempty(options.(name{1}))
      options.(name{1}) = form_name(options.(name{1}));
    end
  end
  for name = {'PoseFrame', 'OutputFrame'}
    if isfield(options, name{1}) && ~isempty(options.(name{1}))
      options.(name{1}) = frame_name(options.(name{1}));
    end
  end
end
