% SPDX-License-Identifier: BSD-3-Clause
% Ctrl-C in the middle of a refinement: it is left there, and the session goes on as ever.

% A session of Octave that makes a call with two million points, and then a small one, without the module in between.
%!function session = begun(call)
%!  [session.in, session.out, session.pid] = ...
%!    popen2('octave-cli', {'--norc', '--no-history', '-q', '--no-line-editing', '-i', '--path', path()});
%!  lines = {'PS1('''');', 'restoring = stand_in(''engine'');', ...
%!           'num_mapped = @() numel(strfind(fileread(''/proc/self/maps''), ''kelvane_engine.mex''));', ...
%!           'scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);', 'many = ceil(2e6 / columns(scene.points));', ...
%!           'points = repmat(scene.points, 1, many); pixels = repmat(scene.pixels, 1, many);', ...
%!           'start = scene.start; start.tells_when_left = true;', [call, ' disp(''whole'');'], ...
%!           'is_loaded = num_mapped() > 0;', ...
%!           'clear(''restoring''); clear(''-global'', ''true_engine''); clear(''kelvane_engine'');', ...
%!           'printf(''loaded %d, then %d\n'', is_loaded, num_mapped());', ...
%!           'printf(''%.17g '', kelvane_refine(scene.start, scene.points, scene.pixels, scene.K).centre); exit(3)'};
%!  fputs(session.in, sprintf('%s\n', lines{:}));
%!  fflush(session.in);
%!endfunction

% All that it prints when it is interrupted as soon as the engine has come back in the middle.
%!function text = said_by_interrupted(call)
%!  session = begun(call);
%!  text = '';
%!  is_interrupted = false;
%!  for attempt = 1:1200
%!    pause(0.1);
%!    is_over = waitpid(session.pid, WNOHANG()) ~= 0;
%!    text = [text, char(fread(session.out, [1, 10000], 'char'))];
%!    fclear(session.out);
%!    if is_over
%!      fclose(session.in);
%!      fclose(session.out);
%!      return;
%!    elseif ~is_interrupted && ~isempty(strfind(text, 'left in the middle'))
%!      is_interrupted = kill(session.pid, SIG().INT) == 0;
%!    end
%!  end
%!  kill(session.pid, SIG().KILL);
%!  error('no end of: %s', text);
%!endfunction

%!test  % the module can be unloaded, and the next refinement has the bits of any other
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%! pose = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K);
%! rest = ['loaded 1, then 0', sprintf('\n'), sprintf('%.17g ', pose.centre)];
%! problem = 'struct(''start'', start, ''points'', points, ''observations'', pixels, ''intrinsics'', scene.K)';
%! for call = {'kelvane_refine(start, points, pixels, scene.K, ''Loss'', ''tukey'');', ...
%!             ['kelvane_batch(repmat(', problem, ', 1, 3), ''Progress'', ''off'', ''Loss'', ''tukey'', ''Threads'', 2);'], ...
%!             'kelvane_estimate(points, fliplr(pixels), scene.K, ''MaxReprojectionError'', 1e-3);'}
%!   text = said_by_interrupted(call{1});
%!   assert(~isempty(strfind(text, 'left in the middle')), text);
%!   assert(isempty(strfind(text, 'whole')), text);
%!   assert(text(max(1, end - numel(rest) + 1):end), rest);
%! end
