% SPDX-License-Identifier: BSD-3-Clause
% Saves a figure as PNG with [width, height] in pixels and closes it. A picture of that name is replaced once the new one is
% whole.
function save_picture(f, file, size_px)
  closing = onCleanup(@() close(f));
  write_whole(file, drawn_picture(f, size_px));
  fprintf('%s\n', file);
end

% The bytes of the PNG, by way of a temporary file, as a quote in a name would end it for gnuplot, and begin a command.
function bytes = drawn_picture(f, size_px)
  folder = tempdir();
  if any(folder == '''')
    folder = '/tmp';
  end
  file = [tempname(folder), '.png'];
  removing = onCleanup(@() remove_file(file));
  if exist('OCTAVE_VERSION', 'builtin')
    devices = {'-dpng', '-dpngcairo'};
    print(f, file, devices{1 + is_gnuplot()}, sprintf('-S%d,%d', size_px));
  else
    set(f, 'PaperUnits', 'inches', 'PaperPosition', [0, 0, size_px / 100]);
    print(f, file, '-dpng', '-r100');
  end
  bytes = bytes_of_file(file);
  last_chunk = [0, 0, 0, 0, double('IEND'), 174, 66, 96, 130];
  if numel(bytes) < 12 || ~isequal(bytes(end - 11:end), uint8(last_chunk))
    error('kelvane:demo', 'The picture was not drawn as a whole: is there room in %s?', folder);
  end
end
