% SPDX-License-Identifier: BSD-3-Clause
% A call changes no input, keeps nothing, and leaves no trace when it fails.

%!function kilobytes = memory_in_use()
%!  text = fileread('/proc/self/status');
%!  kilobytes = str2double(regexp(text, 'VmRSS:\s+(\d+)', 'tokens', 'once'){1});
%!endfunction

%!test  % inputs and their aliases stay as they are
%! for type = [0:3, -3:-1]
%!   inputs = valid_inputs(type);
%!   aliases = inputs;
%!   copies = cellfun(@(value) value + 0, inputs, 'UniformOutput', false);  % arrays of their own
%!   [camera, points, pixels, criteria, type_input, weights] = inputs{:};
%!   x = kelvane_mex(camera, points, pixels, criteria, type_input, weights);
%!   assert(norm(x - camera(1:numel(x))) > 1e-3);
%!   assert({camera, points, pixels, criteria, type_input, weights}, copies);
%!   assert(inputs, copies);
%!   assert(aliases, copies);
%! end

%!test  % one array as several inputs
%! camera = [0.1, 0, 0, 0, 0, -5, 1, 0, 0];
%! same = [1, 0, 4; 0, 2, 1; 1, 1, 1];
%! kept = same + 0;
%! x = kelvane_mex(camera, same, same, [1, 0, 0, 1], 10);
%! assert(same, kept);
%! assert(kelvane_mex(camera, same, kept, [1, 0, 0, 1], 10), x);

%!test  % a call that fails changes no input either
%! inputs = valid_inputs();
%! copies = cellfun(@(value) value + 0, inputs, 'UniformOutput', false);
%! caught([inputs(1:5), {1}]);
%! assert(inputs{1}, copies{1});

%!test  % calls do not influence each other
%! inputs = valid_inputs(2);
%! x = kelvane_mex(inputs{:});
%! others = valid_inputs(0);
%! y = kelvane_mex(others{1:3});
%! caught(with(5, 4));
%! caught({others{1}, zeros(3, 0), zeros(2, 0)});
%! assert(kelvane_mex(inputs{:}), x);

%!test  % a thousand calls that fail early or late leave nothing behind
%! inputs = valid_inputs(2);
%! x = kelvane_mex(inputs{:});
%! refused = with(5, 4);
%! late = {inputs{1}(1:9), zeros(3, 0), zeros(2, 0)};
%! for k = 1:100
%!   caught(refused);
%!   caught(late);
%! end
%! before = memory_in_use();
%! for k = 1:1000
%!   caught(refused);
%!   caught(late);
%! end
%! assert(memory_in_use() - before < 1000);
%! assert(kelvane_mex(inputs{:}), x);

%!test  % cleared and loaded again it works as before
%! inputs = valid_inputs();
%! x = kelvane_mex(inputs{:});
%! for k = 1:10
%!   clear kelvane_mex
%!   assert(~mislocked('kelvane_mex'));
%!   assert(kelvane_mex(inputs{:}), x);
%!   clear kelvane_mex
%!   caught(with(5, 4));
%! end

%!function [inputs, found] = answered_call()
%!  inputs = engine_calls(){1};
%!  found = kelvane_engine(inputs{:});
%!endfunction

%!test  % all this of kelvane_engine, whose inputs lie in cells and structs
%! for k = 1:numel(engine_calls())
%!   inputs = engine_calls(){k};
%!   copies = engine_calls(){k};  % arrays of their own
%!   x = kelvane_engine(inputs{:});
%!   assert(inputs, copies);
%!   assert(kelvane_engine(inputs{:}), x);
%! end

%!test  % results are arrays of their own
%! [inputs, found] = answered_call();
%! kept = found.points{2} + 0;
%! assert(kept, inputs{3}{2}');
%! found.pose(:) = 0;
%! found.points{2}(:) = 0;
%! again = kelvane_engine(inputs{:});
%! assert(again.points{2}, kept);

%!test  % one array as many inputs
%! [inputs, found] = answered_call();
%! kept = inputs{3}{1} + 0;
%! inputs{3} = {inputs{3}{1}, inputs{3}{1}};
%! assert(kelvane_engine(inputs{:}).pose, found.pose);
%! assert(inputs{3}, {kept, kept});

%!test  % calls that fail, are left or are others do not show in the next one
%! [inputs, found] = answered_call();
%! left = inputs;
%! left{8} = 0;
%! kelvane_engine(left{:});
%! fail('kelvane_engine(''refine'', 1)', 'more inputs; there are 1');
%! wrong = inputs;
%! wrong{4}{1} = 'none';
%! kelvane_engine(wrong{:});
%! assert(kelvane_engine(inputs{:}), found);
%! clear kelvane_engine
%! assert(~mislocked('kelvane_engine'));
%! assert(kelvane_engine(inputs{:}), found);

%!test  % a thousand calls that fail, one way or another, leave nothing behind
%! [inputs, found] = answered_call();
%! wrong = inputs;
%! wrong{4}{1} = 'none';
%! for k = 1:1100
%!   if k == 100
%!     before = memory_in_use();
%!   end
%!   try
%!     kelvane_engine('refine', inputs{2:4}, 1, 2, 3);
%!   catch problem
%!   end
%!   x = kelvane_engine(wrong{:});
%! end
%! assert(problem.identifier, 'kelvane:inputs');
%! assert(memory_in_use() - before < 1000);
%! assert(kelvane_engine(inputs{:}), found);
