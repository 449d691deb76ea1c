% SPDX-License-Identifier: BSD-3-Clause
% kelvane_demo: every demo runs, finds what it says, and saves its pictures.

%!function yes = can_draw()
%!  yes = any(strcmp(available_graphics_toolkits(), 'gnuplot'));
%!  if ~yes
%!    disp('skipped: no gnuplot to draw with');
%!  end
%!endfunction

%!function [text, names] = run_demo(name, range = [0.005, 0.5])  % what it prints, its pictures; the part that is not paper
%!  folder = tempname();
%!  confirm_recursive_rmdir(false, 'local');
%!  removing = onCleanup(@() rmdir(folder, 's'));
%!  text = evalc('files = kelvane_demo(name, folder);');
%!  names = cellfun(@(file) file(numel(folder) + 2:end), files, 'UniformOutput', false);
%!  assert(names, setdiff(readdir(folder), {'.', '..'})');
%!  for file = files
%!    pixels = imread(file{1});
%!    assert(size(pixels, 2) >= 900);
%!    drawn = mean(pixels(:) < 250);
%!    assert(drawn > range(1) && drawn < range(2), file{1});
%!  end
%!endfunction

%!function rows = rows_of(text, first_words)  % the numbers in the lines that begin with a word
%!  rows = [];
%!  for line = strsplit(text, "\n")
%!    if strncmp(strtrim(line{1}), first_words, numel(first_words))
%!      rows(end + 1, :) = str2double(regexp(line{1}(numel(strtok(line{1})) + 1:end), '-?\d+\.?\d*(e[+-]\d+)?', 'match'));
%!    end
%!  end
%!endfunction

%!test  % chessboard
%! if can_draw()
%!   [~, names] = run_demo('chessboard');
%!   assert(names, {'chessboard_all_types.png', 'chessboard_convergence.png', 'chessboard_corners.png'});
%! end

%!test  % photograph: the numbers that README shows; most of the picture is the photograph
%! if can_draw()
%!   [text, names] = run_demo('photograph', [0.6, 0.9]);
%!   assert(names, {'photograph.png'});
%!   assert(~isempty(strfind(text, 'RMS 27.70 pixels before, 0.17 after')));
%! end

%!test  % outliers: the robust losses are near, the plain one is not
%! if can_draw()
%!   [text, names] = run_demo('outliers');
%!   assert(names, {'outliers.png'});
%!   assert(rows_of(text, 'none')(1:2) > [5, 5]);
%!   for loss = {'huber', 'cauchy', 'tukey'}
%!     row = rows_of(text, loss{1});
%!     assert(row(1:2) < [0.1, 0.2] & abs(row(3) - 11) <= 2, loss{1});
%!   end
%! end

%!test  % matches: without a start all wrong ones are thrown out, and nearly all right ones are kept
%! if can_draw()
%!   [text, names] = run_demo('matches');
%!   assert(names, {'matches.png'});
%!   assert(~isempty(strfind(text, '32 of 54 matches are wrong')));
%!   kept = rows_of(text, 'right and kept');
%!   assert(kept(1) >= 20 && kept(2) == 0);
%!   assert(rows_of(text, 'off the optimum')(2:3) < [0.1, 0.2]);
%! end

%!test  % bearings: a third of the points is behind, and the errors are of the size that is told
%! if can_draw()
%!   [text, names] = run_demo('bearings');
%!   assert(names, {'bearings.png'});
%!   assert(~isempty(strfind(text, '30 of 90 points lie behind')));
%!   assert(~isempty(strfind(text, 'Converged')));
%!   off = rows_of(text, 'off the truth');
%!   sigma = rows_of(text, 'standard deviation');
%!   assert(numel(off), 6);
%!   assert(all(abs(off) < 3.5 * sigma) && norm(off ./ sigma) > 0.5);
%! end

%!test  % colmap: every image is near its pose in the file, and the model of the demo is gone afterwards
%! if can_draw()
%!   before = getenv('TMPDIR');
%!   own = tempname();
%!   mkdir(own);
%!   setenv('TMPDIR', own);
%!   [text, names] = run_demo('colmap');
%!   setenv('TMPDIR', before);
%!   assert(rmdir(own));  % empty as before
%!   assert(names, {'colmap.png'});
%!   rows = rows_of(text, 'house_');
%!   assert(size(rows), [12, 6]);
%!   assert(all(rows(:, 2) > 5 & rows(:, 3) < 0.8));
%!   assert(all(rows(:, 5) < 0.15 & rows(:, 6) < 0.3));
%!   told = regexp(text, 'read again: 12 poses, RMS of each as refined to (\S+) pixels', 'tokens', 'once');
%!   assert(str2double(told{1}) < 1e-9);
%! end

%!test  % convergence: every pixel type but 3 ends at the least RMS of every view
%! if can_draw()
%!   [text, names] = run_demo('convergence');
%!   assert(names, {'convergence_of_types.png'});
%!   lines = strsplit(text, "\n");
%!   rows = lines(~cellfun('isempty', regexp(lines, '^ *-?\d+ [aq]')));
%!   assert(numel(rows), 7);
%!   for row = rows
%!     above = str2double(regexp(row{1}, '\S+$', 'match', 'once'));
%!     converged = ~any(regexp(row{1}, ' - '));
%!     arrives = isempty(strfind(row{1}, ' 3 qn '));
%!     assert(converged == arrives && (above < 1e-10) == arrives, row{1});
%!   end
%! end

%!test  % conventions: the printed centre, point and pixel fit the formulas on the page of the conventions
%! if can_draw()
%!   [text, names] = run_demo('conventions');
%!   assert(names, {'conventions_bearings.png', 'conventions_frames.png', 'conventions_pixels.png'});
%!   numbers = str2double(regexp(text(1:strfind(text, ')' )(end)), '-?\d+\.\d+', 'match'));
%!   p = numbers(10:12);
%!   assert(numbers(13:14), 700 * p(1:2) / p(3) + [320, 240], 0.05);
%!   assert(norm(numbers(7:9) - numbers(1:3)), norm(p), 2e-3);
%! end

%!test  % types, by its name in any capitals, with the path left as it was
%! if can_draw()
%!   before = path();
%!   rmpath(fileparts(which('chessboard_demo')));
%!   without = path();
%!   [text, names] = run_demo('TYPES');
%!   after = path();
%!   path(before);
%!   assert(after, without);
%!   assert(names, {'chessboard_all_types.png'});
%!   assert(numel(strfind(text, 'least')) > 30);
%! end

%!test  % gnuplot is asked for where it is needed and not there; otherwise the user's choice of what draws stays
%! if can_draw()
%!   work = tempname();
%!   confirm_recursive_rmdir(false, 'local');
%!   removing = onCleanup(@() rmdir(work, 's'));
%!   before = graphics_toolkit();
%!   choosing = onCleanup(@() graphics_toolkit(before));
%!   graphics_toolkit('gnuplot');
%!   restoring = stand_in('no_gnuplot');
%!   fail('evalc(''kelvane_demo("conventions", work);'')', 'Without a screen Octave draws with gnuplot, which is not there');
%!   clear restoring
%!   graphics_toolkit(before);
%!   run_demo('conventions');
%!   assert(graphics_toolkit(), before);
%! end
