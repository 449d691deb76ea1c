% SPDX-License-Identifier: BSD-3-Clause
% The examples of README.md and of the pages in docs and examples: every block of Octave runs as printed, in the project's
% folder, one after the other within a page, and prints the block without a language that follows it.

%!function files = all_pages()  % without the project's folder
%!  project = [fileparts(fileparts(which('kelvane_refine'))), filesep()];
%!  found = [dir([project, '*.md']); dir([project, 'docs/*.md']); dir([project, 'docs/decisions/*.md']); ...
%!           dir([project, 'examples/*.md']); dir([project, 'benchmarks/*.md'])]';
%!  files = strrep(fullfile({found.folder}, {found.name}), project, '');
%!endfunction

%!function text = text_of_page(page)
%!  text = fileread(fullfile(fileparts(fileparts(which('kelvane_refine'))), page));
%!endfunction

%!function blocks = blocks_of(page)
%!  blocks = blocks_of_page(fullfile(fileparts(fileparts(which('kelvane_refine'))), page));
%!endfunction

%!function [codes, outputs] = examples_of(page)
%!  blocks = blocks_of(page);
%!  is_code = strcmp({blocks.language}, 'octave');
%!  blocks(end + 1) = struct('language', 'none', 'text', '');
%!  places = find(is_code);
%!  codes = {blocks(places).text};
%!  outputs = {blocks(places + 1).text};
%!  outputs(~strcmp({blocks(places + 1).language}, '')) = {''};
%!endfunction

%!function printed = run_page(codes)  % what each block prints; they share their variables
%!  [folder, removing] = project_with_module();
%!  start = cd(folder);
%!  back = onCleanup(@() cd(start));
%!  paths = path();
%!  restoring = onCleanup(@() path(paths));
%!  places = getenv('TMPDIR');
%!  setting = onCleanup(@() setenv('TMPDIR', places));
%!  setenv('TMPDIR', fullfile(folder, 'tmp'));
%!  visible = get(0, 'defaultfigurevisible');
%!  showing = onCleanup(@() set(0, 'defaultfigurevisible', visible));
%!  set(0, 'defaultfigurevisible', 'off');
%!  warning('off', 'Octave:gnuplot-graphics', 'local');
%!  printed = strsplit(printed_by(strjoin(codes, "\nfprintf('%s', char(1));\n")), char(1), 'CollapseDelimiters', false);
%!  close('all');
%!endfunction

%!function yes = can_run(page)
%!  yes = ~strncmp(page, 'examples', 8) || ...
%!        (any(strcmp(available_graphics_toolkits(), 'gnuplot')) && ~isempty(pkg('list', 'parallel')));
%!  if ~yes
%!    printf('skipped: %s draws with gnuplot and runs two processes with the package parallel\n', page);
%!  end
%!endfunction

%!test  % each block runs and prints what is printed below it
%! num_run = struct('codes', 0, 'outputs', 0);
%! for page = all_pages()
%!   [codes, outputs] = examples_of(page{1});
%!   if ~isempty(codes) && can_run(page{1})
%!     printed = run_page(codes);
%!     assert(numel(printed), numel(codes));
%!     for k = find(~cellfun(@isempty, outputs))
%!       assert(strtrim(printed{k}), strtrim(outputs{k}), page{1});
%!       num_run.outputs = num_run.outputs + 1;
%!     end
%!   end
%!   num_run.codes = num_run.codes + numel(codes);
%! end
%! assert(num_run.codes >= 6 && num_run.outputs >= 2);

%!test  % no example escapes: all fences are of a known kind, and no call of a function is in a block without a fence
%! for page = all_pages()
%!   blocks = blocks_of(page{1});
%!   known = {'', 'octave', 'matlab', 'cmake', 'cpp', 'sh', 'text'};
%!   assert(all(ismember({blocks.language}, known)), page{1});
%!   assert(2 * numel(blocks), numel(regexp(text_of_page(page{1}), '^```', 'lineanchors')), page{1});
%!   bare = '^ {4,}(addpath|.*kelvane_\w+\().*$';
%!   assert(isempty(regexp(text_of_page(page{1}), bare, 'match', 'once', 'lineanchors', 'dotexceptnewline')), page{1});
%! end

%!test  % the examples in the help of the demos are a call, which runs in octave/demos, or run too
%! if can_run('examples')
%!   project = fileparts(fileparts(which('kelvane_refine')));
%!   codes = {};
%!   for file = dir(fullfile(project, 'examples', '*.m'))'
%!     text = get_help_text(strrep(file.name, '.m', ''));
%!     code = regexp(text, '^ *Example *\n(.*?)\n *\n', 'tokens', 'once', 'lineanchors');
%!     assert(numel(code), 1, file.name);
%!     if ~strcmp(strtrim(code{1}), strrep(file.name, '.m', '(''.'');'))
%!       codes(end + 1) = code;
%!     end
%!   end
%!   assert(numel(codes) >= 3);
%!   run_page([{'addpath examples'}, codes]);
%! end
