% SPDX-License-Identifier: BSD-3-Clause
% Whether Octave's package parallel is installed; says so where it is not.
function answer = has_parallel()
  answer = ~isempty(pkg('list', 'parallel'));
  if ~answer
    disp('skipped: Octave''s package parallel is not installed');
  end
end
