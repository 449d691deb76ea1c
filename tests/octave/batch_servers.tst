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
%! for k = 8:-1:1
%!   scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], k);
%!   problems(k) = struct('name', sprintf('scene %d', k), 'start', scene.start, 'points', scene.points, ...
%!                        'observations', scene.pixels, 'intrinsics', scene.K);
%! end
%! problems(5).points(7) = Inf;
%! here = kelvane_batch(problems, 'Progress', 'off', 'Loss', 'huber');
%! assert(here(5).error, 'points(1, 3) is Inf. All of it must be finite numbers.');
%! there = kelvane_batch(problems, 'Connections', connections, 'Progress', 'line', 'Loss', 'huber');
%! bits = @(rows) {rows.name, rows.pose, rows.info, rows.error};
%! assert(isequal(bits(here), bits(there)));
%! assert(isnan(there(5).rms_after) && all([there([1:4, 6:8]).exitflag] > 0));
%! told = @(pose, values, state) error('kelvane:tests', 'process %d', getpid());
%! there = kelvane_batch(problems, 'Connections', connections, 'Progress', 'off', 'OutputFcn', told);
%! processes = unique({there([1:4, 6:8]).error});
%! assert(numel(processes) >= 2 && ~any(strcmp(processes, sprintf('process %d', getpid()))));
%! assert(all(strncmp(processes, 'process ', 8)));
