% SPDX-License-Identifier: BSD-3-Clause
% The inputs of mex, a cell for each call, that compile the sources one by one and link them into the folder objects.
% host is 'octave' or 'matlab': they write options and outputs differently. opencv has the fields include and library, its
% folders, and flags, a cell of words for the linker.
function calls = build_calls(host, sources, objects, opencv, link_options)
  in_matlab = strcmp(host, 'matlab');
  calls = cell(1, numel(sources) + 1);
  names = cell(1, numel(sources));
  for i = 1:numel(sources)
    [~, name] = fileparts(sources(i).file);
    names{i} = fullfile(objects, [name, '.o']);
    includes = {'-I.', ['-I', opencv.include]};
    if in_matlab
      % The optimisation is not that of the host: the same module everywhere. Complex numbers stay in two arrays.
      options = {['CXXFLAGS=$CXXFLAGS', sprintf(' %s', sources(i).options{:})], 'CXXOPTIMFLAGS=', '-R2017b', '-silent', ...
                 '-outdir', objects};
    else
      options = [sources(i).options, {'-o', names{i}}];
    end
    calls{i} = [{'-c'}, options, includes, {sources(i).file}];
  end
  if numel(unique(names)) < numel(names)
    error('kelvane:build', 'Two sources have the same name: their compiled forms cannot be in one folder.');
  end
  libraries = [{['-L', opencv.library], '-lopencv_core'}, link_options];
  if in_matlab
    calls{end} = [{'-R2017b', '-silent', '-outdir', objects, '-output', 'kelvane_mex', ...
                   ['LDFLAGS=$LDFLAGS', sprintf(' %s', opencv.flags{:})]}, names, libraries];
  else
    exports = fullfile('cmake', 'kelvane_mex.map');  % MATLAB has a list of its own
    output = fullfile(objects, ['kelvane_mex.', mexext()]);
    calls{end} = [{'-o', output, ['-Wl,--version-script=', exports]}, opencv.flags, names, libraries];
  end
end
