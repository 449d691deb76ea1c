% SPDX-License-Identifier: BSD-3-Clause
% Lets pkg work in the test's own folders and its own list, not in those of the user. Folders for m-files and binaries differ,
% as they do when a package is installed for all users.
function in_prefix()
  work = getenv('KELVANE_WORK');
  pkg('prefix', fullfile(work, 'prefix'), fullfile(work, 'architecture'));
  pkg('local_list', fullfile(work, 'packages'));
  pkg('global_list', fullfile(work, 'no_global_packages'));
end
