% SPDX-License-Identifier: BSD-3-Clause
% A function show(done, failed) that tells how far a batch of n problems is: as a bar, on a line or not at all. The bar
% closes when the function is cleared, after an error as well.
function show = batch_progress(kind, n)
  if strcmp(kind, 'auto')
    kinds = {'line', 'bar'};
    kind = kinds{1 + has_screen()};
  end
  switch kind
    case 'bar'
      bar = waitbar(0, told(0, n, 0), 'Name', 'kelvane_batch');
      closing = onCleanup(@() close_bar(bar));
      show = @(done, failed) move_bar(bar, closing, done, n, failed);
    case 'line'
      show = @(done, failed) fprintf('\r%s%s', told(done, n, failed), repmat(sprintf('\n'), 1, done == n));
    otherwise
      show = @(done, failed) [];
  end
end

function yes = has_screen()
  if exist('OCTAVE_VERSION', 'builtin')
    yes = have_window_system();
  else
    yes = usejava('awt');
  end
end

function text = told(done, n, failed)
  text = sprintf('refined %d of %d', done, n);
  if failed > 0
    text = sprintf('%s, %d with an error', text, failed);
  end
end

% closing is held for as long as the handle to this function is.
function move_bar(bar, closing, done, n, failed) %#ok<INUSL>
  if ishghandle(bar)  % the user may have closed it
    waitbar(done / n, bar, told(done, n, failed));
  end
end

function close_bar(bar)
  if ishghandle(bar)
    close(bar);
  end
end
