% SPDX-License-Identifier: BSD-3-Clause
% kelvane_batch on two servers of Octave's package parallel, which the script two_servers has started.

%!function connections = connected()
%!  pkg('load', 'parallel');
%!  for attempt = 1:50  % the servers may need a moment
%!    try
%!      connections = pconnect({'127.0.0.1', '127.0.0.2'}, struct('use_tls', false));
%!      return;
%!    catch failure
%!      pause(0.1);
%!    end
%!  end
%!  rethrow(failure);
%!endfunction

%!test  % the same bits as here, errors in their rows, from processes that are not this one
%! connections = connected();
%! closing = onCleanup(@() sclose(connections));
%! infos = network_get_info(connections(2:3));
%! assert({infos.peername}, {'127.0.0.1', '127.0.0.2'});
%! problems = scene_problems(8);
%! problems(5).points(7) = Inf;
%! here = kelvane_batch(problems, 'Progress', 'off', 'Loss', 'huber');
%! assert(here(5).error, 'points(1, 3) is Inf. All of it must be finite numbers.');
%! there = kelvane_batch(problems, 'Connections', connections, 'Progress', 'line', 'Loss', 'huber');
%! assert(isequaln(here, there));
%! assert(isnan(there(5).rms_after) && all([there([1:4, 6:8]).exitflag] > 0));
%! file = tempname();
%! for k = 1:8
%!   problems(k).start.tells_process = file;
%! end
%! restoring = stand_in('engine');
%! kelvane_batch(problems, 'Connections', connections, 'Progress', 'off');
%! processes = unique(load(file));
%! delete(file);
%! assert(numel(processes) >= 2 && ~any(processes == getpid()));

%!test  % where servers are lost all results come all the same, but those that a process dies of; this one does not
%! for field = {'kills_process_once', 'kills_process'}
%!   connections = connected();
%!   problems = scene_problems(40);
%!   here = kelvane_batch(problems, 'Connections', connections, 'Progress', 'off');  % tells them where the module is
%!   file = tempname();
%!   write_text(file, '');
%!   problems(23).start.(field{1}) = file;
%!   restoring = stand_in('engine');
%!   lastwarn('');
%!   there = kelvane_batch(problems, 'Connections', connections, 'Progress', 'line');
%!   clear('restoring');
%!   [~, identifier] = lastwarn();
%!   assert(identifier, 'kelvane:lostServers');
%!   is_lost = strcmp({there.identifier}, 'kelvane:lostProcess');
%!   assert(find(is_lost), 23 * ones(1, strcmp(field{1}, 'kills_process')));
%!   assert(isequaln(here(~is_lost), there(~is_lost)));
%!   if strcmp(field{1}, 'kills_process')
%!     delete(file);
%!   end
%!   assert(exist(file, 'file'), 0);
%! end
