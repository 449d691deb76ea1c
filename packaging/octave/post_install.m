% SPDX-License-Identifier: BSD-3-Clause
% Moves the help of kelvane_mex beside the binary, which pkg puts into a folder for the kind of computer: elsewhere it would
% be called in place of the binary, or not be found by help.
function post_install(description)
  for binary = glob(fullfile(description.archprefix, '*', 'kelvane_mex.mex'))'
    help_text = fullfile(description.dir, 'kelvane_mex.m');
    [done, message] = copyfile(help_text, fileparts(binary{1}));
    if ~done
      error('kelvane: %s', message);
    end
  end
  delete(help_text);
end
