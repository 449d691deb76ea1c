% SPDX-License-Identifier: BSD-3-Clause
% Stands for MATLAB's class of that name, of which nothing but the name is looked at.
classdef ThreadPool
end
