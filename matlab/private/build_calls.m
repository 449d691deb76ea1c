% SPDX-License-Identifier: BSD-3-Clause
% The inputs of mex, a cell for each call, that compile the sources one by one and link them. host is 'octave' or 'matlab':
% they write options and outputs differently. sources and options are what build_sources returns, places what build_places
% does.
function calls = build_calls(host, sources, options, places)
  in_matlab = strcmp(host, 'matlab');
  calls = cell(1, numel(sources) + 1);
  names = cell(1, numel(sources));
  for i = 1:numel(sources)
    [~, name] = fileparts(sources{i});
    names{i} = fullfile(places.objects, [name, '.o']);
    if in_matlab
      % The optimisation is not that of the host: the same module everywhere. Complex numbers stay in two arrays.
      words = {['CXXFLAGS=$CXXFLAGS', sprintf(' %s', options{:})], 'CXXOPTIMFLAGS=', '-R2017b', '-silent', ...
               '-outdir', places.objects};
    else
      words = [options, {'-o', names{i}, ['-iquote', places.project]}];  % before the -I. that mex adds
    end
    calls{i} = [{'-c'}, words, {['-I', places.project], fullfile(places.project, sources{i})}];
  end
  if numel(unique(names)) < numel(names)
    error('kelvane:build', 'Two sources have the same name: their compiled forms cannot be in one folder.');
  end
  if in_matlab
    calls{end} = [{'-R2017b', '-silent', '-outdir', places.output, '-output', places.name}, names];
  else
    exports = fullfile(places.project, 'kelvane_mex.map');  % MATLAB has a list of its own
    output = fullfile(places.output, [places.name, '.', mexext()]);
    calls{end} = [{'-o', output, ['-Wl,--version-script=', exports]}, names];
  end
end
