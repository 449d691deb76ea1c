% SPDX-License-Identifier: BSD-3-Clause
% Where demos write, and what they leave alone. The demo of the conventions is the quickest.

%!function yes = can_draw()
%!  yes = any(strcmp(available_graphics_toolkits(), 'gnuplot'));
%!  if ~yes
%!    disp('skipped: no gnuplot to draw with');
%!  end
%!endfunction

%!function [folder, removing] = work_folder()
%!  folder = tempname();
%!  mkdir(folder);
%!  removing = onCleanup(@() remove(folder));
%!endfunction

%!function remove(folder)
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(folder, 's');
%!endfunction

%!function setting = temporary_files_in(folder)
%!  before = getenv('TMPDIR');
%!  setting = onCleanup(@() setenv('TMPDIR', before));
%!  setenv('TMPDIR', folder);
%!endfunction

%!function names = names_in(folder)
%!  names = setdiff(readdir(folder), {'.', '..'})';
%!endfunction

%!function files = run_quietly(varargin)
%!  evalc('files = kelvane_demo(varargin{:});');
%!endfunction

%!function quietly_on_full_disk(demo, varargin)  % a demo that runs to its first picture
%!  restoring = stand_in('full_disk');
%!  evalc('demo(varargin{:});');
%!endfunction

%!function names = pictures()
%!  names = {'conventions_bearings.png', 'conventions_frames.png', 'conventions_pixels.png'};
%!endfunction

%!test  % without a folder: a new one each time, for the user alone; a link in somebody else's folder is not followed
%! if can_draw()
%!   [work, removing] = work_folder();
%!   setting = temporary_files_in(work);
%!   write_text(fullfile(work, 'precious'), 'as before');
%!   mkdir(work, 'kelvane_demo');
%!   for name = pictures()
%!     symlink(fullfile(work, 'precious'), fullfile(work, 'kelvane_demo', name{1}));
%!   end
%!   files = run_quietly('conventions');
%!   folder = fileparts(files{1});
%!   assert(files, fullfile(folder, pictures()));
%!   assert(names_in(folder), pictures());
%!   assert(stat(folder).modestr(1:10), 'drwx------');
%!   assert(~any(strcmp(fileparts(run_quietly('conventions'){1}), {folder, fullfile(work, 'kelvane_demo')})));
%!   assert(fileread(fullfile(work, 'precious')), 'as before');
%! end

%!test  % a folder made for a demo that fails does not stay behind
%! if can_draw()
%!   [work, removing] = work_folder();
%!   setting = temporary_files_in(work);
%!   fail('quietly_on_full_disk(@kelvane_demo, ''conventions'')', 'was not drawn as a whole');
%!   assert(names_in(work), cell(1, 0));
%! end

%!test  % the figures of the user are there, and the current one is still current
%! if can_draw()
%!   warning('off', 'Octave:gnuplot-graphics', 'local');
%!   figures = arrayfun(@(k) figure('visible', 'off'), [1, 2]);
%!   closing = onCleanup(@() close(figures));
%!   set(0, 'currentfigure', figures(1));
%!   [work, removing] = work_folder();
%!   run_quietly('conventions', work);
%!   assert({get(0, 'currentfigure'), sort(get(0, 'children'))'}, {figures(1), figures});
%! end

%!test  % a folder of the user's: a picture that is there is named before anything is written, and no other is returned
%! if can_draw()
%!   [work, removing] = work_folder();
%!   write_text(fullfile(work, 'conventions_pixels.png'), 'mine');
%!   fail('kelvane_demo(''all'', work)', 'holds conventions_pixels.png. Remove it, or name another folder');
%!   assert(names_in(work), {'conventions_pixels.png'});
%!   rename(fullfile(work, 'conventions_pixels.png'), fullfile(work, 'holiday.png'));
%!   assert(run_quietly('conventions', work), fullfile(work, pictures()));
%!   assert(names_in(work), [pictures(), {'holiday.png'}]);
%!   assert(fileread(fullfile(work, 'holiday.png')), 'mine');
%!   fail('kelvane_demo(''types'', fullfile(work, ''holiday.png''))', 'holiday.png cannot be made');
%! end

%!test  % any name will do, and is taken for a name only
%! if can_draw()
%!   [work, removing] = work_folder();
%!   mkdir(work, 'for ''files''');
%!   setting = temporary_files_in(fullfile(work, 'for ''files'''));
%!   folder = fullfile(work, 'o''d k & co''; system(''touch ran''); x=$(touch ran) [1]');
%!   for demo = {'conventions', 'colmap'}
%!     files = run_quietly(demo{1}, folder);
%!     assert(all(cellfun(@(file) size(imread(file), 2) >= 900, files)));
%!   end
%!   assert(names_in(folder), [{'colmap.png'}, pictures()]);
%!   assert(names_in(work), {'for ''files''', folder(numel(work) + 2:end)});
%!   assert(names_in(fullfile(work, 'for ''files''')), cell(1, 0));
%! end

%!test  % a link of a picture's name is replaced, what it leads to is not
%! if can_draw()
%!   [work, removing] = work_folder();
%!   write_text(fullfile(work, 'precious'), 'as before');
%!   symlink(fullfile(work, 'precious'), fullfile(work, 'conventions_frames.png'));
%!   evalc('conventions_demo(work)');
%!   assert(fileread(fullfile(work, 'precious')), 'as before');
%!   assert(S_ISREG(lstat(fullfile(work, 'conventions_frames.png')).mode));
%! end

%!test  % a picture that could not be drawn replaces none, and leaves nothing open or behind
%! if can_draw()
%!   [work, removing] = work_folder();
%!   mkdir(work, 'm[1]');
%!   setting = temporary_files_in(fullfile(work, 'm[1]'));
%!   write_text(fullfile(work, 'conventions_frames.png'), 'the last one');
%!   fail('quietly_on_full_disk(@conventions_demo, work)', 'was not drawn as a whole: is there room in .*m\[1\]');
%!   assert(fileread(fullfile(work, 'conventions_frames.png')), 'the last one');
%!   assert(names_in(work), {'conventions_frames.png', 'm[1]'});
%!   assert(names_in(fullfile(work, 'm[1]')), cell(1, 0));
%!   assert(isempty(get(0, 'children')));
%! end

%!test  % what is written takes its place as a whole or not at all, whatever the name is or leads to
%! [work, removing] = work_folder();
%! start = cd(fullfile(fileparts(which('chessboard_demo')), 'private'));
%! back = onCleanup(@() cd(start));
%! write_text(fullfile(work, 'precious'), 'as before');
%! symlink(fullfile(work, 'precious'), fullfile(work, '[1]'));
%! write_whole(fullfile(work, '[1]'), 'new');
%! write_whole(fullfile(work, '1'), uint8(1:255));
%! assert(fileread(fullfile(work, 'precious')), 'as before');
%! assert(fileread(fullfile(work, '[1]')), 'new');
%! assert(bytes_of_file(fullfile(work, '1')), uint8(1:255));
%! assert(names_in(work), {'1', '[1]', 'precious'});
%! mkdir(work, 'folder');
%! fail('write_whole(fullfile(work, ''folder''), ''new'')', 'folder cannot be written: ');
%! fail('write_whole(''/proc/self/new'', ''new'')', 'new cannot be written: no file can be made in its folder');
%! assert(names_in(work), {'1', '[1]', 'folder', 'precious'});
%! clear back

%!test  % folders of the path that begin where the user is stay there
%! if can_draw()
%!   [work, removing] = work_folder();
%!   project = fileparts(fileparts(which('kelvane_refine')));
%!   code = sprintf('addpath examples, conventions_demo(''%s'')', work);
%!   module = fileparts(which('kelvane_engine'));
%!   [status, said] = system(sprintf('cd "%s" && octave-cli --norc --no-history -q --path "%s" --path matlab --eval "%s" 2>&1', project, ...
%!                                   module, code));
%!   assert(status == 0 && isempty(strfind(said, 'load')) && numel(names_in(work)) == 3, '%s', said);
%! end
