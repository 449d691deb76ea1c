% SPDX-License-Identifier: BSD-3-Clause
% The installed package in use: loaded, its help, a refinement by each way in, news, and unloaded without a trace.
function use_package()
  before = path();
  pkg('load', 'kelvane');
  assert([exist('kelvane_mex'), exist('kelvane_engine')], [3, 3]);
  assert(strncmp(strtrim(get_help_text('kelvane_mex')), 'KELVANE_MEX  Refine a camera pose', 33));
  assert(strncmp(strtrim(get_help_text('kelvane_engine')), 'KELVANE_ENGINE  The compiled engine', 35));
  assert(strncmp(strtrim(get_help_text('kelvane')), 'KELVANE  Camera pose refinement', 31));
  assert(~isempty(test('kelvane_mex', 'grabdemo')) && ~isempty(test('kelvane_refine', 'grabdemo')));
  assert(~isempty(strfind(evalc('news kelvane'), 'Features')));
  for section = pkg('describe', 'kelvane'){1}.provides
    for name = section{1}.functions
      assert(any(exist(name{1}) == [2, 3]), name{1});
    end
  end
  refine_known_pose();
  pkg('unload', 'kelvane');
  assert(path(), before);
  assert([exist('kelvane_mex'), exist('kelvane_engine')], [0, 0]);
  assert(exist('kelvane_refine'), 0);
end
