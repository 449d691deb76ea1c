% SPDX-License-Identifier: BSD-3-Clause
% Compiles the module beside its help with kelvane_build, and uses it.
function build_and_refine()
  said = evalc('file = kelvane_build();');
  assert(~isempty(regexp(said, '^\[1/\d+\] kelvane_mex.cpp\n.*linking\n$', 'once')), said);
  assert(file, fullfile(fileparts(which('kelvane_build')), ['kelvane_mex.', mexext()]));
  assert(evalc('again = kelvane_build(''DryRun'', true);'), '');
  assert(again, file);
  assert(exist('kelvane_mex'), 3);
  assert(strncmp(strtrim(get_help_text('kelvane_mex')), 'KELVANE_MEX  Refine', 19));
  refine_known_pose();
end
