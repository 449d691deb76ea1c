% SPDX-License-Identifier: BSD-3-Clause
% A text as a row of characters; an error that names it otherwise.
function text = checked_text(text, name)
  if isa(text, 'string') && isscalar(text)  % one of MATLAB's text objects
    text = char(text);
  end
  if ~ischar(text)
    error('kelvane:notText', '%s must be a text; this is of class %s.', name, class(text));
  end
end
