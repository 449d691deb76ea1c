% SPDX-License-Identifier: BSD-3-Clause
% The module's sources, a 1 x N cell of files relative to the folder project, and the options that each is compiled with, words
% in a row: as kelvane_mex.build says, which CMake reads, too.
function [sources, options] = build_sources(project)
  text = fileread(fullfile(project, 'kelvane_mex.build'));
  sources = {};
  for folder = [{'.'}, words_behind(text, 'folders')]
    sources = [sources, sources_in(project, folder{1})]; %#ok<AGROW>
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
  files = sort(files(~cellfun('isempty', regexp(files, '\.cpp$'))));
  if ~strcmp(folder, '.')
    files = strcat(folder, '/', files);
  end
end
