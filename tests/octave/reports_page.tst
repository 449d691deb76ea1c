% SPDX-License-Identifier: BSD-3-Clause
% docs/reports.md lists every message that a user can get, word for word, and none that is not in the sources.

%!function folder = project()
%!  folder = fileparts(fileparts(which('kelvane_refine')));
%!endfunction

%!function text = sources(folder, pattern)  % without tests and comments, with the pieces of each text joined
%!  text = '';
%!  for file = glob(fullfile(project(), folder, pattern))'
%!    lines = strsplit(fileread(file{1}), "\n");
%!    text = [text, strjoin(lines(cellfun('isempty', regexp(lines, '^\s*(%|//|#)'))), "\n"), "\n"];
%!  end
%!  text = regexprep(text, {'''\s*\.\.\.\n\s*''', '"\s*\n\s*"'}, '');
%!endfunction

%!function text = functions()
%!  text = [sources('matlab', 'kelvane_*.m'), sources('matlab/private', '*.m')];
%!endfunction

%!function text = engine()  % what the m-files ask, and what checks for it
%!  text = [sources('.', 'kelvane_engine.cpp'), sources('mex_engine', '*.cpp'), files()];
%!  text = [text, sources('cameras', '*.cpp')];
%!  for name = {'camera_model', 'exit_message', 'observations', 'observed_points', 'known_pose', 'free_motion', 'pose', 'refinement_state'}
%!    text = [text, sources('pose_refinement', [name{1}, '.cpp'])];
%!  end
%!  text = [text, exits_of_estimates(), sources('pose_estimation', 'search.cpp')];
%!endfunction

%!function text = exits_of_estimates()  % behind the options, which the door checks itself
%!  text = sources('pose_estimation', 'estimation.cpp');
%!  text = text(strfind(text, 'Estimation::Estimation')(1):end);
%!endfunction

%!function text = files()  % readers and writers, all of whose texts with a blank in them are sentences
%!  text = [sources('model_files', '*.cpp'), sources('model_files', '*.h')];
%!endfunction

%!function texts = told_by_engine()  % the texts in its errors and in the words of an exit
%!  errors = regexp([sources('mex_engine', '*.cpp'), sources('pose_refinement', 'observations.cpp'), ...
%!                   sources('pose_refinement', 'observed_points.cpp'), ...
%!                   sources('pose_refinement', 'known_pose.cpp'), sources('pose_refinement', 'free_motion.cpp'), ...
%!                   sources('pose_refinement', 'pose.cpp'), sources('cameras', '*.cpp'), ...
%!                   sources('pose_estimation', 'search.cpp')], ...
%!                  '\<(refuse|Bad_argument)\((".*?)\);\n', 'tokens');
%!  errors = [errors{:}](2:2:end);
%!  texts = regexp([strjoin(errors, "\n"), sources('pose_refinement', 'exit_message.cpp'), exits_of_estimates(), files()], '"((?:[^"\\\n]|\\.)*)"', 'tokens');
%!  texts = [texts{:}];
%!endfunction

%!function pieces = pieces_of(message)  % what is said between numbers and names
%!  names = 'MaxIterations|StepTolerance|FunctionTolerance|LossScale|Weights|OutputFcn';
%!  pieces = regexp(message, ['%[.\d]*[dgs]|\<(', names, ')\>'], 'split');
%!  pieces = regexprep(pieces, '^[^A-Za-z]+|[^A-Za-z]+$', '');
%!  pieces = pieces(~cellfun('isempty', pieces));
%!endfunction

%!function text = module()
%!  text = [sources('contract', '*.cpp'), sources('.', 'kelvane_mex.cpp'), sources('camera_pose', 'bearing_intrinsics.*'), ...
%!          sources('fw_opt', 'underdetermined_system.h')];
%!endfunction

%!function text = page()
%!  text = fileread(fullfile(project(), 'docs', 'reports.md'));
%!endfunction

%!function listed = messages_of_page(first_heading, end_heading)  % in the columns of messages
%!  part = regexp(page(), [first_heading, '\n(.*?)\n', end_heading], 'tokens', 'once'){1};
%!  rows = regexp(part, '^\|[^\n]*$', 'match', 'lineanchors');
%!  listed = {};
%!  for row = rows
%!    found = regexp(row{1}, '\| `([^`]* [^`]*)`', 'tokens', 'once');
%!    if ~isempty(found)
%!      listed{end + 1} = found{1};
%!    end
%!  end
%!endfunction

%!test  % every text in an error of an m-file is on the page, and so is every identifier
%! code = functions();
%! calls = regexp(code, '\<(error|file_error|fail_at|warning)\((.*?)\);\n', 'tokens');
%! assert(numel(calls) > 50);
%! text = page();
%! for call = calls
%!   texts = regexp(call{1}{2}, '''((?:[^''\n]|'''')*)''', 'tokens');
%!   for words = [texts{:}]
%!     words = strrep(words{1}, '''''', '''');
%!     is_message = any(words == ' ') && ~isempty(regexp(words, '[A-Za-z]{2}', 'once'));
%!     if is_message || strncmp(words, 'kelvane:', 8)
%!       assert(~isempty(strfind(text, words)), ['not on the page: ', words]);
%!     end
%!   end
%! end
%! for identifier = unique(regexp(code, 'kelvane:[A-Za-z]+', 'match'))
%!   assert(~isempty(strfind(text, identifier{1})), ['not on the page: ', identifier{1}]);
%! end

%!test  % every text in an error or an exit of the engine is on the page, and so is every identifier
%! text = page();
%! texts = told_by_engine();
%! is_message = ~cellfun('isempty', regexp(texts, '[A-Za-z]{2,}[^A-Za-z]* [^A-Za-z]*[A-Za-z]|^ +[A-Za-z ]{3,}'));
%! assert(sum(is_message) > 60);
%! for words = texts(is_message)
%!   for piece = pieces_of(words{1})
%!     assert(~isempty(strfind(text, piece{1})), ['not on the page: ', words{1}]);
%!   end
%! end
%! identifiers = regexp(engine(), '\<(?:refuse|Bad_argument)\(\s*"(\w+)"', 'tokens');
%! identifiers = unique([identifiers{:}]);
%! assert(numel(identifiers) > 15);
%! for identifier = identifiers
%!   assert(~isempty(strfind(text, ['`kelvane:', identifier{1}, '`'])), ['not on the page: ', identifier{1}]);
%! end

%!test  % every message and identifier on the page is in the m-files, or in pieces in the engine
%! code = strrep(functions(), '''''', '''');
%! texts = strjoin(cellfun(@(words) strrep(words, '\"', '"'), regexp(engine(), '"((?:[^"\\\n]|\\.)*)"', 'match'), ...
%!                         'UniformOutput', false), "\n");
%! listed = messages_of_page('## Messages of the m-files', '### Batches');
%! listed = [listed, messages_of_page('## Exits of kelvane_refine', '## Messages of the m-files')];
%! assert(numel(listed) > 70);
%! for words = listed
%!   is_there = ~isempty(strfind(code, words{1}));
%!   for piece = pieces_of(words{1})
%!     assert(is_there || ~isempty(strfind(texts, piece{1})), ['not in the sources: ', words{1}]);
%!   end
%! end
%! for identifier = unique(regexp(page(), '`kelvane:[A-Za-z]+', 'match'))
%!   is_there = ~isempty(strfind([code, texts], identifier{1}(2:end))) || ...
%!              ~isempty(strfind(texts, ['"', identifier{1}(10:end), '"']));
%!   assert(is_there, ['not in the sources: ', identifier{1}]);
%! end

%!test  % every text that the module can put into a report is on the page
%! text = page();
%! texts = regexp(sources('contract', '*.cpp'), '"([^"\n]*)"', 'tokens');
%! texts = [texts, regexp(sources('.', 'kelvane_mex.cpp'), '"([^"\n]*)"', 'tokens')];
%! pieces = {};
%! for words = [texts{:}]
%!   pieces = [pieces, strtrim(strsplit(words{1}, '\\n'))];
%! end
%! assert(numel(pieces) > 40);
%! for piece = pieces(cellfun(@(words) any(words == ' '), pieces))
%!   assert(~isempty(strfind(text, piece{1})), ['not on the page: ', piece{1}]);
%! end

%!test  % every message and every line of the module on the page is in the sources
%! code = module();
%! listed = messages_of_page('## Messages of kelvane_mex', '## Exits of kelvane_refine');
%! assert(numel(listed) >= 16);
%! for words = listed
%!   pieces = strtrim(regexp(words{1}, '<[^<>]*>', 'split'));
%!   for piece = pieces(~cellfun('isempty', pieces))
%!     assert(~isempty(strfind(code, piece{1})), ['not in the sources: ', piece{1}]);
%!   end
%! end
%! sites = [sources('contract', 'sites.h'), sources('camera_pose', 'bearing_intrinsics.*')];
%! lines = regexp(page(), '(?<=^\| |, )\d{4}(?=(, \d{4})? \|)', 'match', 'lineanchors');
%! assert(numel(lines) >= 16);
%! for line = lines
%!   assert(~isempty(regexp(sites, ['\<', line{1}, '\>'], 'once')), ['no site: ', line{1}]);
%! end
%! for line = regexp(sources('contract', 'sites.h'), '(?<=file, )\d+', 'match')
%!   assert(~isempty(strfind(page(), line{1})), ['not on the page: ', line{1}]);
%! end

%!test  % the short report on the page is the real one
%! message = caught({[0.1 0.2 0.3, 0 0 -3, 500 320 240], [0 1; 0 0; 0 0.1], [1 2 3; 4 5 6]});
%! assert(~isempty(strfind(page(), strrep(message, 'kelvane_mex: ', ''))));
