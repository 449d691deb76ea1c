% SPDX-License-Identifier: BSD-3-Clause
% The inputs of mex, a cell for each call, that compile the sources one by one and link them. host is 'octave' or 'matlab':
% they write options and outputs differently. places is what build_places returns; opencv has the fields include and
% library, its folders, and flags, a cell of words for the linker.
function calls = build_calls(host, sources, places, opencv, link_options)
  in_matlab = strcmp(host, 'matlab');
  calls = cell(1, numel(sources) + 1);
  names = cell(1, numel(sources));
  for i = 1:numel(sources)
    [~, name] = fileparts(sources(i).file);
    names{i} = fullfile(places.objects, [name, '.o']);
    includes = {['-I', places.project], ['-I', opencv.include]};
    if in_matlab
      % The optimisation is not that of the host: the same module everywhere. Complex numbers stay in two arrays.
      options = {['CXXFLAGS=$CXXFLAGS', sprintf(' %s', sources(i).options{:})], 'CXXOPTIMFLAGS=', '-R2017b', '-silent', ...
                 '-outdir', places.objects};
    else
      options = [sources(i).options, {'-o', names{i}, ['-iquote', places.project]}];  % before the -I. that mex adds
    end
    calls{i} = [{'-c'}, options, includes, {fullfile(places.project, sources(i).file)}];
  end
  if numel(unique(names)) < numel(names)
    error('kelvane:build', 'Two sources have the same name: their compiled forms cannot be in one folder.');
  end
  libraries = [{['-L', opencv.library], '-lopencv_core'}, link_options];
  if in_matlab
    calls{end} = [{'-R2017b', '-silent', '-outdir', places.output, '-output', places.name, ...
                   ['LDFLAGS=$LDFLAGS', sprintf(' %s', opencv.flags{:})]}, names, libraries];
  else
    exports = fullfile(places.project, 'cmake', 'kelvane_mex.map');  % MATLAB has a list of its own
    output = fullfile(places.output, [places.name, '.', mexext()]);
    calls{end} = [{'-o', output, ['-Wl,--version-script=', exports]}, opencv.flags, names, libraries];
  end
end
