% SPDX-License-Identifier: BSD-3-Clause
% The inputs of mex, a cell for each call, that compile the sources one by one and link each module, and what to say of each
% call. host is 'octave' or 'matlab': they write options and outputs differently. modules and options are what build_sources
% returns, places what build_places does.
function [calls, steps] = build_calls(host, modules, options, places)
  in_matlab = strcmp(host, 'matlab');
  sources = unique([modules.sources], 'stable');
  calls = cell(1, numel(sources));
  for i = 1:numel(sources)
    object = compiled(sources{i}, places);
    if in_matlab
      % The optimisation is not that of the host: the same module everywhere. Complex numbers stay in two arrays.
      words = {['CXXFLAGS=$CXXFLAGS', sprintf(' %s', options{:})], 'CXXOPTIMFLAGS=', '-R2017b', '-silent', ...
               '-outdir', fileparts(object)};
    else
      words = [options, {'-o', object, ['-iquote', places.project]}];  % before the -I. that mex adds
    end
    calls{i} = [{'-c'}, words, {['-I', places.project], fullfile(places.project, sources{i})}];
  end
  for module = modules
    objects = cellfun(@(source) compiled(source, places), module.sources, 'UniformOutput', false);
    name = [module.name, places.suffix];
    if in_matlab
      words = {'-R2017b', '-silent', '-outdir', places.output, '-output', name};
    else
      exports = fullfile(places.project, 'kelvane.map');  % MATLAB has a list of its own
      words = {'-o', fullfile(places.output, [name, '.', mexext()]), ['-Wl,--version-script=', exports]};
    end
    calls{end + 1} = [words, objects]; %#ok<AGROW>
  end
  steps = [sources, strcat({'linking '}, {modules.name})];
end

% In a folder like that of the source: MATLAB's mex names it after the source alone, and two folders may have the same name.
function object = compiled(source, places)
  object = fullfile(places.objects, regexprep(source, '\.cpp$', '.o'));
end
