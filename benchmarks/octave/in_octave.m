% SPDX-License-Identifier: BSD-3-Clause
% in_octave(ours, older, seconds): times what a user of Octave calls. ours and older are the folders of two versions, as in
% a path; older may be ''. Each row takes so many seconds; below 1 files are small.
function in_octave(ours, older, seconds)
  addpath(ours);
  here = @(call, varargin) {{call, ours, [varargin{:}, 1](1)}};
  both = @(call, varargin) [here(call, varargin{:}), {{call, older, [varargin{:}, 1](1)}}(1:0 + !isempty(older))];
  warning('off', 'Octave:shadowed-function', 'local');  % an older version, or one of optim's packages
  race_ten_iterations(here, seconds);
  race_types(here, both, seconds);
  race_daily_use(here, both, seconds);
  race_costs(here, seconds);
  race_reading(here, both, seconds);
  print_memory();
end

function race_ten_iterations(here, seconds)
  with_optim = !isempty(pkg('list', 'optim'));
  if with_optim
    pkg('load', 'optim');
  end
  table = {};
  for N = [6, 100, 1000, 10000]
    p = scene(N);
    calls = [here(mex(p)), here(@() gauss_newton(p)), here(@() by_lsqnonlin(p))];
    table(end + 1, :) = {num2str(N), calls(1:2 + with_optim)};
  end
  race('Ten iterations in Octave', {'kelvane_mex', 'vectorised m-code', 'lsqnonlin'}, table, seconds);
end

function race_types(here, both, seconds)
  table = {};
  for N = [100, 10000]
    p = scene(N);
    for kind = [0, 0, 1, 2, 3, 10, -1, -2, -3; 0, 1, zeros(1, 7)]
      call = mex(of_type(p, kind(1)), [1, 0, -1e30, kind(2)], kind(1));
      label = sprintf('type %d%s, %d', kind(1), {'', ' by differences'}{1 + kind(2)}, N);
      table(end + 1, :) = {label, [here(mex(p), 10), both(call, 1 + 2 * (kind(1) == 0))]};
    end
    weighted = mex(p, [1, 0, -1e30, 0], 0, 0.5 + rand(1, 2 * N));
    table(end + 1, :) = {sprintf('type 0 with weights, %d', N), [here(mex(p), 10), both(weighted, 3)]};
  end
  race('One iteration of kelvane_mex', {'one of ten of type 0', 'this version', 'older version'}, table, seconds);
end

function race_daily_use(here, both, seconds)
  table = {};
  for N = [54, 100000]
    p = scene(N);
    for loss = {'none', 'tukey'}
      table(end + 1, :) = {sprintf('kelvane_refine, loss %s, %d', loss{1}, N), [here(mex(p)), both(refine(p, 'Loss', loss{1}))]};
    end
  end
  p = scene(100);
  table(end + 1, :) = {'kelvane_batch, one of 500, 100', [here(mex(p)), both(batch(repmat(p, 1, 500)), 500)]};
  table(end + 1, :) = {'kelvane_estimate, 100', [here(mex(p)), here(@() kelvane_estimate(p.points, p.observations, p.intrinsics))]};
  race('Daily use', {'kelvane_mex, ten iterations', 'this version', 'older version'}, table, seconds);
end

function race_costs(here, seconds)
  table = {};
  for N = [10000, 100000]
    p = scene(N);
    C = cat(3, [1.4, 0.2; 0.2, 0.8], [0.7, 0.1; 0.1, 1.2])(:, :, 1 + mod(0:N - 1, 2));
    known = @(varargin) here(refine(p, 'NoiseSigma', 1, varargin{:}));
    table(end + 1, :) = {num2str(N), [known('Weights', 1 ./ [C(1, 1, :)(:)'; C(2, 2, :)(:)']), ...
                                      known('ObservationCovariance', C), known()]};
  end
  race('Uncertain observations', {'weights', 'covariances', 'neither'}, table, seconds);

  cameras = {'PINHOLE', [800, 800, 320, 240]
             'RADIAL', [800, 320, 240, -0.2, 0.05]
             'OPENCV', [800, 800, 320, 240, -0.2, 0.05, 1e-3, -1e-3]
             'FULL_OPENCV', [800, 800, 320, 240, -0.2, 0.05, 1e-3, -1e-3, 0.01, 0.01, 0.01, 0.01]
             'OPENCV_FISHEYE', [400, 400, 320, 240, 0.05, -0.01, 1e-3, -1e-4]
             'THIN_PRISM_FISHEYE', [400, 400, 320, 240, 0.05, -0.01, 1e-3, -1e-3, 1e-3, -1e-4, 1e-3, 1e-3]
             'FOV', [400, 400, 320, 240, 0.9]};
  table = {};
  for N = [10000, 100000]
    through = cellfun(@(varargin) here(refine(scene(N, kelvane_camera(varargin{:})), 'MaxIterations', 3)), cameras(:, 1), cameras(:, 2));
    table(end + 1, :) = {num2str(N), through'};
  end
  race('Three iterations through a lens', cameras(:, 1)', table, seconds);

  problems = repmat(scene(100000), 1, 16);
  ways = [here(batch(problems, 'Threads', 1), 16), here(batch(problems, 'Threads', 2), 16), here(batch(problems, 'Processes', 2), 16)];
  race('Many problems, by the clock on the wall', {'kelvane_batch, one thread', 'two threads', 'two processes'}, ...
       {'one of 16, 100000', ways(1:2 + !isempty(pkg('list', 'parallel')))}, seconds, @() time());
end

function race_reading(here, both, seconds)
  confirm_recursive_rmdir(false, 'local');
  folder = tempname();
  removing = onCleanup(@() rmdir(folder, 's'));
  n = 10^(seconds >= 1);
  write_models(folder, 20 * n, 10000 * n, 2500, 2250);
  colmap = @(varargin) ['kelvane_read_colmap(''', fullfile(folder, varargin{:}), ''')'];
  calls = {colmap('text'), colmap('binary'), ['kelvane_read_bal(''', fullfile(folder, 'bal.txt'), ''')']};
  table = {'COLMAP, text', both(@() eval(calls{1})); 'COLMAP, binary', here(@() eval(calls{2})); 'BAL', both(@() eval(calls{3}))};
  for k = 1:3
    size = sum([dir(fullfile(folder, {'text', 'binary', 'bal.txt'}{k})).bytes]) / 2^20;
    table{k, 1} = sprintf('%s, %.1f MB, takes %.1f of it', table{k, 1}, size, growth('', calls{k}) / 2^20 / size);
  end
  for num_images = 100 * n * [1, 8]
    model = fullfile(folder, num2str(num_images));
    write_models(model, num_images, 25 * num_images, 50, 0);
    call = colmap(num2str(num_images), 'text');
    table(end + 1, :) = {sprintf('COLMAP, text, one of %d images', num_images), here(@() eval(call), num_images)};
  end
  race('Reading files', {'this version', 'older version'}, table, seconds);
end

function print_memory()
  fprintf('## Memory\n\nBytes per point that a call takes beyond its inputs, of 2,000,000:\n\n| | |\n| --- | --: |\n');
  calls = {'kelvane_mex', 'kelvane_mex(p.camera, p.points, p.observations)'
           'kelvane_mex, type 10', 'kelvane_mex([p.camera(1:6), 1, 0, 0], p.points, p.points, [1, 0, -1e30, 0], 10)'
           'kelvane_refine', 'kelvane_refine(p.start, p.points, p.observations, p.intrinsics)'}';
  for call = calls
    fprintf('| %s | %.0f |\n', call{1}, growth('p = scene(2e6);', call{2}) / 2e6);
  end
  fprintf('\n');
end

% Bytes that a process of its own takes at the highest moment of a call, beyond what it had.
function bytes = growth(setup, call)
  of_process = '@(name) 1024 * str2double(regexp(fileread(''/proc/self/status''), [name, '':\s*(\d+)''], ''tokens'', ''once''){1})';
  reset = 'f = fopen(''/proc/self/clear_refs'', ''w''); fputs(f, ''5''); fclose(f);';
  code = sprintf('%s %s\n get = %s; had = get(''VmRSS''); x = %s; printf(''%%d'', get(''VmHWM'') - had);', setup, reset, of_process, call);
  [status, told] = system(sprintf('octave-cli --norc --no-history -q --path ''%s'' --eval "%s"', path(), code));
  assert(status, 0);  % it has told why
  bytes = str2double(told);
end

function call = mex(p, varargin)
  call = @() kelvane_mex(p.camera, p.points, p.observations, varargin{:});
end

function call = refine(p, varargin)
  call = @() kelvane_refine(p.start, p.points, p.observations, p.intrinsics, varargin{:});
end

function call = batch(problems, varargin)
  call = @() kelvane_batch(problems, 'Progress', 'off', varargin{:});
end

function x = gauss_newton(p)
  x = p.camera(1:6)';
  for i = 1:10
    [residuals, J] = pixel_residuals(x, p);
    x -= J \ residuals;
  end
end

function x = by_lsqnonlin(p)
  options = optimset('Jacobian', 'on', 'MaxIter', 10, 'TolFun', 0);
  x = lsqnonlin(@(x) pixel_residuals(x, p), p.camera(1:6)', [], [], options);
end

% A scene for another type of kelvane_mex.
function p = of_type(p, number)
  type = kelvane_types(number);
  p.camera = [kelvane_pose(p.start, type.representation, 'world_from_camera'), p.intrinsics];
  if type.bearing
    p.observations = kelvane_undistort(p.observations, p.intrinsics, 'directions');
    p.camera(end - 2:end) = [1, 0, 0];
  end
end
