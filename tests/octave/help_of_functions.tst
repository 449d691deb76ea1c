% SPDX-License-Identifier: BSD-3-Clause
% The help texts of all public functions: H1 line, a runnable example that prints what it says, and the index.

%!function yes = has_doctest()
%!  yes = ~isempty(pkg('list', 'doctest'));
%!  if yes
%!    pkg('load', 'doctest');
%!  else
%!    disp('skipped: the package doctest is not installed');
%!  end
%!endfunction

%!function yes = can_draw()
%!  yes = any(strcmp(available_graphics_toolkits(), 'gnuplot'));
%!  if ~yes
%!    disp('skipped: no gnuplot to draw with');
%!  end
%!endfunction

%!function names = public_functions()
%!  files = dir(fullfile(fileparts(which('kelvane_refine')), 'kelvane_*.m'));
%!  names = setdiff(strrep({files.name}, '.m', ''), {'kelvane_mex', 'kelvane_engine'});  % help_text.tst has these
%!endfunction

%!test  % every example prints what is printed below it
%! if has_doctest()
%!   names = [public_functions(), {'kelvane_mex'}];
%!   assert(numel(names) >= 19);
%!   [passed, total, summary] = doctest(names);
%!   if passed < total
%!     doctest(names);  % tells which and why
%!   end
%!   assert(passed, total);
%!   assert(summary.num_targets_without_tests, 0);
%! end

%!test  % every function has a demo, which runs as "demo NAME" does
%! if can_draw()
%!   warning('off', 'Octave:gnuplot-graphics', 'local');
%!   visible = get(0, 'defaultfigurevisible');
%!   showing = onCleanup(@() set(0, 'defaultfigurevisible', visible));
%!   set(0, 'defaultfigurevisible', 'off');
%!   names = [public_functions(), {'kelvane_mex'}];
%!   codes = cellfun(@(name) test(name, 'grabdemo'), names, 'UniformOutput', false);
%!   assert(names(cellfun(@isempty, codes)), cell(1, 0));
%!   num_pictures = 0;
%!   for code = unique(codes)
%!     assert(~isempty(printed_by(code{1})) || ~isempty(get(0, 'children')), code{1});
%!     num_pictures = num_pictures + numel(get(0, 'children'));
%!     close('all');
%!   end
%!   assert(num_pictures >= 4);
%! end

%!test  % the H1 line begins with the name
%! for name = public_functions()
%!   assert(strncmp(strtrim(get_help_text(name{1})), [upper(name{1}), '  '], numel(name{1}) + 2), name{1});
%! end

%!test  % what to see also is there: of functions what an installed package has, of the demos their neighbours too
%! folder = fileparts(which('kelvane_refine'));
%! of_functions = dir(fullfile(folder, 'kelvane*.m'));
%! of_demos = dir(fullfile(fileparts(folder), 'examples', '*.m'));
%! there = setdiff(strrep({of_functions.name, 'mex.m'}, '.m', ''), {'kelvane_build', 'kelvane_engine'});
%! num_named = 0;
%! for file = [of_functions; of_demos]'
%!   found = regexp(fileread(fullfile(file.folder, file.name)), '^% +See also (.*?)\.\n\n', 'tokens', 'once', 'lineanchors');
%!   assert(numel(found), 1, file.name);
%!   others = regexp(found{1}, '\w+', 'match');
%!   if ~strcmp(file.folder, folder)
%!     others = setdiff(others, strrep({of_demos.name}, '.m', ''));
%!   end
%!   assert(setdiff(others, there), cell(1, 0), file.name);
%!   num_named = num_named + numel(others);
%! end
%! assert(num_named > 60);

%!test  % Contents.m lists every function with its H1 line
%! contents = fileread(fullfile(fileparts(which('kelvane_refine')), 'Contents.m'));
%! for name = [public_functions(), {'kelvane_mex'}]
%!   h1 = strtrim(strtok(get_help_text(name{1}), "\n"));
%!   line = sprintf('%%   %-22s - %s', name{1}, strtrim(h1(numel(name{1}) + 1:end)));
%!   assert(~isempty(strfind(contents, line)), line);
%! end

%!test  % help kelvane, and kelvane by itself, list the same but for what only the sources have
%! themes = regexp(fileread(fullfile(fileparts(which('kelvane_refine')), 'Contents.m')), '% Refinement\n.*(?=% Building)', 'match', 'once');
%! text = get_help_text('kelvane');
%! assert(~isempty(strfind(text, strrep(regexprep(themes, '^%', '', 'lineanchors'), '%', ''))));
%! assert(~isempty(strfind(evalc('kelvane()'), strtrim(text))));
