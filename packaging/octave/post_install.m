% SPDX-License-Identifier: BSD-3-Clause
% Moves the help of each module beside it: pkg puts the binaries into a folder for the kind of computer, and elsewhere the
% help would be called in place of its binary, or not be found.
function post_install(description)
  for name = {'kelvane_mex', 'kelvane_engine'}
    binary = glob(fullfile(description.archprefix, '*', [name{1}, '.mex']));
    [done, message] = movefile(fullfile(description.dir, [name{1}, '.m']), fileparts(binary{1}));
    if ~done
      error('kelvane: %s', message);
    end
  end
end
