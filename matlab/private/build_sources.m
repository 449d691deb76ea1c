% SPDX-License-Identifier: BSD-3-Clause
% What kelvane.build says, which CMake reads, too: modules, a struct array with the name of each and its sources, a 1 x N cell of
% files relative to the folder project; and the options that each source is compiled with, words in a row.
function [modules, options] = build_sources(project)
  text = fileread(fullfile(project, 'kelvane.build'));
  modules = struct('name', {'kelvane_mex', 'kelvane_engine'}, 'sources', []);
  for i = 1:numel(modules)
    sources = {[modules(i).name, '.cpp'], 'old_libraries.cpp'};
    for folder = [words_behind(text, 'both'), words_behind(text, modules(i).name)]
      sources = [sources, sources_in(project, folder{1})]; %#ok<AGROW>
    end
    modules(i).sources = sources;
  end
  options = [words_behind(text, 'options'), words_behind(text, 'optimisation')];
end

function words = words_behind(text, name)
  words = regexp(text, ['^', name, ': *([^\n]*)'], 'tokens', 'once', 'lineanchors');
  words = strsplit(strtrim(words{1}));
end

% What dir would take for a pattern are the letters of a name here.
function files = sources_in(project, folder)
  if exist('OCTAVE_VERSION', 'builtin')
    files = readdir(fullfile(project, folder))';
  else
    listed = dir(fullfile(project, folder));
    files = {listed.name};
  end
  files = strcat(folder, '/', sort(files(~cellfun('isempty', regexp(files, '\.cpp$')))));
end
