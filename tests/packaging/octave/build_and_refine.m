% SPDX-License-Identifier: BSD-3-Clause
% Compiles the modules beside their help with kelvane_build, and uses them.
function build_and_refine()
  said = evalc('files = kelvane_build();');
  assert(~isempty(regexp(said, '^\[1/\d+\] kelvane_mex.cpp\n.*linking kelvane_mex\n.*linking kelvane_engine\n$', 'once')), said);
  assert(files, fullfile(fileparts(which('kelvane_build')), strcat({'kelvane_mex.', 'kelvane_engine.'}, mexext())));
  assert(evalc('again = kelvane_build(''DryRun'', true);'), '');
  assert(again, files);
  assert([exist('kelvane_mex'), exist('kelvane_engine')], [3, 3]);
  assert(strncmp(strtrim(get_help_text('kelvane_mex')), 'KELVANE_MEX  Refine', 19));
  refine_known_pose();
end
