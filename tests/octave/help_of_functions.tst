% SPDX-License-Identifier: BSD-3-Clause
% The help texts of all public functions: H1 line, a runnable example that prints what it says, and the index.

%!function names = public_functions()
%!  files = dir(fullfile(fileparts(which('kelvane_refine')), 'kelvane_*.m'));
%!  names = setdiff(strrep({files.name}, '.m', ''), {'kelvane_mex', 'kelvane_engine'});  % help_text.tst has these
%!endfunction

%!test  % every example prints what is printed below it
%! warning('off', 'Octave:gnuplot-graphics', 'local');  % what one host says of its graphics
%! names = public_functions();
%! assert(numel(names) >= 5);
%! for name = names
%!   [code, output] = help_example(name{1});
%!   printed = strtrim(strsplit(strtrim(printed_by(code)), "\n"));
%!   assert(printed, output, name{1});
%! end

%!test  % the H1 line begins with the name, the end says what to see also
%! for name = public_functions()
%!   text = get_help_text(name{1});
%!   assert(strncmp(strtrim(text), [upper(name{1}), '  '], numel(name{1}) + 2), name{1});
%!   see_also = regexp(text, 'See also (.*?)\.\s*$', 'tokens', 'once');
%!   for other = strsplit(see_also{1}, ', ')
%!     assert(exist(other{1}) ~= 0, [name{1}, ': ', other{1}]);
%!   end
%! end

%!test  % Contents.m lists every function with its H1 line
%! contents = fileread(fullfile(fileparts(which('kelvane_refine')), 'Contents.m'));
%! for name = [public_functions(), {'kelvane_mex'}]
%!   h1 = strtrim(strtok(get_help_text(name{1}), "\n"));
%!   line = sprintf('%%   %-22s - %s', name{1}, strtrim(h1(numel(name{1}) + 1:end)));
%!   assert(~isempty(strfind(contents, line)), line);
%! end
