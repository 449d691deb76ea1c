classdef TestCase < handle
  % SPDX-License-Identifier: BSD-3-Clause
  % A stand-in for MATLAB's class of that name, as far as the classes in tests/matlab use it: every failure is an error.

  methods
    function verifyEqual(~, actual, expected, ~, tolerance)
      if nargin < 5
        tolerance = 0;
      end
      assert(class(actual), class(expected));
      assert(actual, expected, tolerance);
    end

    function verifyClass(~, actual, name), assert(class(actual), name); end

    function verifyGreaterThan(~, actual, floor), assert(actual > floor); end

    function verifyNotEmpty(~, actual), assert(~isempty(actual)); end

    function verifyEmpty(~, actual), assert(isempty(actual)); end

    function verifyError(~, call, identifier)
      problem = struct('identifier', 'none');
      try
        call();
      catch problem
      end
      assert(problem.identifier, identifier);
    end

    function assumeNotEmpty(~, actual, reason)
      if isempty(actual)
        error('kelvane:assumption', '%s', reason);
      end
    end
  end
end
