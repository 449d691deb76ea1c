% SPDX-License-Identifier: BSD-3-Clause
% matlab/functionSignatures.json, from which MATLAB completes calls, compared with the functions themselves.

%!function signatures = all_signatures()
%!  file = fullfile(fileparts(which('kelvane_refine')), 'functionSignatures.json');
%!  signatures = jsondecode(fileread(file), 'makeValidName', false);
%!endfunction

%!function names = public_functions()
%!  files = dir(fullfile(fileparts(which('kelvane_refine')), 'kelvane_*.m'));
%!  names = setdiff(strrep({files.name}, '.m', ''), {'kelvane_engine'});
%!endfunction

% Names of one kind, or of the kinds joined by |, in their order. Entries without a type make jsondecode give a cell.
%!function names = inputs_of(signature, kinds)
%!  inputs = signature.inputs;
%!  if isstruct(inputs)
%!    inputs = num2cell(inputs);
%!  end
%!  fits = cellfun(@(input) ~isempty(regexp(input.kind, ['^(', kinds, ')$'])), inputs);
%!  names = cellfun(@(input) input.name, inputs(fits), 'UniformOutput', false)(:)';
%!endfunction

%!function names = declared(name, pattern)
%!  text = fileread(fullfile(fileparts(which('kelvane_refine')), [name, '.m']));
%!  found = regexp(text, ['^function ', strrep(pattern, 'NAME', name)], 'tokens', 'once', 'lineanchors');
%!  names = regexp([found{:}], '\w+', 'match');
%!endfunction

%!function assert_in_help(name, inputs)
%!  call = [name, '(', strjoin(inputs, ', '), ')'];
%!  assert(~isempty(strfind(get_help_text(name), call)), 'The help has no %s', call);
%!endfunction

%!function named = options_in_help(name)
%!  text = regexp(get_help_text(name), 'Options(,[^\n]*)?:\n(.*?)\n\s*\n', 'tokens', 'once');
%!  named = cell(1, 0);
%!  if ~isempty(text)
%!    lines = regexp(text{end}, '^ {4,5}\S.*$', 'match', 'lineanchors', 'dotexceptnewline');
%!    for line = lines
%!      named = [named, regexp(regexp(line{1}, '^ *(''\w+''(, )?)+', 'match', 'once'), '\w+', 'match')]; %#ok<AGROW>
%!    end
%!    if any(strncmp(strtrim(lines), 'All options of kelvane_refine', 29))
%!      named = [named, options_in_help('kelvane_refine')];
%!    end
%!  end
%!endfunction

%!test  % every function has a signature, and there are no others
%! names = fieldnames(all_signatures());
%! assert(names{1}, '_schemaVersion');
%! assert(sort(names(2:end))', sort(public_functions()));

%!test  % the inputs are those of the function, in their order; options stand for varargin
%! signatures = all_signatures();
%! for name = setdiff(public_functions(), {'kelvane_mex'})
%!   inputs = inputs_of(signatures.(name{1}), 'required|ordered');
%!   in_code = declared(name{1}, '[^\n]*NAME\(([^)]*)\)');
%!   if ~isempty(inputs_of(signatures.(name{1}), 'namevalue'))
%!     inputs{end + 1} = 'varargin';
%!   end
%!   if isequal(in_code, {'varargin'}) && ~isempty(setdiff(inputs, in_code))
%!     assert_in_help(name{1}, inputs);
%!   else
%!     assert([name, inputs], [name, in_code]);
%!   end
%! end

%!test  % those of the module are those of its help
%! signature = all_signatures().kelvane_mex;
%! inputs = inputs_of(signature, 'required|ordered');
%! assert_in_help('kelvane_mex', inputs);
%! assert_in_help('kelvane_mex', inputs_of(signature, 'required'));
%! assert(numel(inputs), 6);

%!test  % the outputs are as many as the function has
%! signatures = all_signatures();
%! for name = setdiff(public_functions(), {'kelvane_mex'})
%!   assert({name{1}, numel(signatures.(name{1}).outputs)}, {name{1}, nargout(name{1})});
%! end

%!test  % every option is known to the function: it is the one behind that is refused
%! signatures = all_signatures();
%! anything = struct('start', 0, 'points', 0, 'observations', 0, 'intrinsics', 0);  % options are looked at first
%! num_options = 0;
%! for name = public_functions()
%!   required = repmat({anything}, 1, numel(inputs_of(signatures.(name{1}), 'required')));
%!   for option = inputs_of(signatures.(name{1}), 'namevalue')
%!     message = '';
%!     try
%!       feval(name{1}, required{:}, option{1}, 0, 'NoSuchOption', 0);
%!     catch problem
%!       message = problem.message;
%!     end
%!     assert(strncmp(message, '''NoSuchOption'' is not', 21), [name{1}, ', ', option{1}, ': ', message]);
%!     num_options = num_options + 1;
%!   end
%! end
%! assert(num_options > 20);

%!test  % every option of a help text is there
%! signatures = all_signatures();
%! for name = public_functions()
%!   named = options_in_help(name{1});
%!   assert([name, sort(named)], [name, sort(inputs_of(signatures.(name{1}), 'namevalue'))]);
%! end
