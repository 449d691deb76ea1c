% SPDX-License-Identifier: BSD-3-Clause
% The fenced blocks of a page in Markdown, as a 1 x n struct array with the fields language, '' for none, and text.
function blocks = blocks_of_page(file)
  found = regexp(fileread(file), '^```([^\n]*)\n(.*?)^```$', 'tokens', 'lineanchors');
  blocks = struct('language', cell(1, numel(found)), 'text', '');
  for k = 1:numel(found)
    blocks(k).language = found{k}{1};
    blocks(k).text = found{k}{2};
  end
end
