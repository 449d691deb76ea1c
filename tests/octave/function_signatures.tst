% SPDX-License-Identifier: BSD-3-Clause
% matlab/functionSignatures.json, from which MATLAB completes calls, compared with the functions and their help.

%!function [names, signatures] = all_signatures()
%!  file = fullfile(fileparts(which('kelvane_refine')), 'functionSignatures.json');
%!  signatures = jsondecode(fileread(file), 'makeValidName', false);
%!  names = setdiff(fieldnames(signatures), {'_schemaVersion'})';
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

%!function named = options_in_help(name)
%!  text = regexp(get_help_text(name), 'Options(,[^\n]*)?:\n(.*?)\n\s*\n', 'tokens', 'once');
%!  lines = regexp(['', text{max(1, end):end}], '^ {4,5}\S.*$', 'match', 'lineanchors', 'dotexceptnewline');
%!  named = regexp(strjoin(regexp(lines, '^ *(''\w+''(, )?)+', 'match', 'once')), '\w+', 'match');
%!  if any(strncmp(strtrim(lines), 'All options of kelvane_refine', 29))
%!    named = [named, options_in_help('kelvane_refine')];
%!  end
%!endfunction

%!test  % every function has a signature, with its inputs in their order, its outputs, and the options of its help
%! [names, signatures] = all_signatures();
%! files = dir(fullfile(fileparts(which('kelvane_refine')), 'kelvane_*.m'));
%! assert(names, setdiff(strrep({files.name}, '.m', ''), {'kelvane_engine'}));
%! for name = names
%!   inputs = inputs_of(signatures.(name{1}), 'required|ordered');
%!   options = inputs_of(signatures.(name{1}), 'namevalue');
%!   assert([name, sort(options)], [name, sort(options_in_help(name{1}))]);
%!   text = fileread(fullfile(files(1).folder, [name{1}, '.m']));
%!   declared = regexp(text, ['^function [^\n]*', name{1}, '\(([^)]*)\)'], 'tokens', 'once', 'lineanchors');
%!   declared = regexp([declared{:}], '\w+', 'match');
%!   if ~isequal(declared, [inputs, repmat({'varargin'}, 1, ~isempty(options))])  % then one of the calls in the help
%!     assert(any(strcmp(declared, 'varargin')) || strcmp(name, 'kelvane_mex'));
%!     assert(~isempty(strfind(text, [name{1}, '(', strjoin(inputs, ', '), ')'])), 'The help has no such call of %s', name{1});
%!   end
%!   if ~strcmp(name, 'kelvane_mex')
%!     assert([name, numel(signatures.(name{1}).outputs)], [name, nargout(name{1})]);
%!   end
%! end

%!test  % every option is known to the function: it is the one behind that is refused
%! [names, signatures] = all_signatures();
%! anything = struct('start', 0, 'points', 0, 'observations', 0, 'intrinsics', 0);  % options are looked at first
%! for name = names
%!   required = repmat({anything}, 1, numel(inputs_of(signatures.(name{1}), 'required')));
%!   for option = inputs_of(signatures.(name{1}), 'namevalue')
%!     fail([name{1}, '(required{:}, option{1}, 0, ''NoSuchOption'', 0)'], '^''NoSuchOption'' is not');
%!   end
%! end
