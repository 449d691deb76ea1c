% SPDX-License-Identifier: BSD-3-Clause
% The module's sources, each with the options that it is compiled with, as CMake's files in the folder project list them:
% a 1 x N struct array with the fields file, relative to project, and options, words in a row. A self-contained module has
% more of them, and flags for its linker, words in a row.
function [sources, flags] = build_sources(project, is_self_contained)
  main = cmake_text(project, 'CMakeLists.txt');
  common = common_options(project, main);
  files = [{'kelvane_mex.cpp'}, words_of(main, 'add_library\(kelvane \S+\s([^)]*)\)')];
  sources = sources_with(files, common);
  if ~isempty(strfind(main, 'kelvane_add_kernels('))
    text = cmake_text(project, 'cmake', 'KelvaneKernels.cmake');
    for kernels = words_of(main, 'kelvane_add_kernels\(kelvane\s([^)]*)\)')
      sources = [sources, sources_of_kernels(text, kernels{1}, common)]; %#ok<AGROW>
    end
  end
  flags = {};
  if is_self_contained
    text = cmake_text(project, 'cmake', 'KelvaneSelfContained.cmake');
    files = cellfun(@(words) words{1}, regexp(text, '"\$\{PROJECT_SOURCE_DIR\}/(self_contained/\w+\.cpp)"', 'tokens'), ...
                    'UniformOutput', false);
    sources = [sources, sources_with(files, common)];
    flags = [words_of(text, 'target_link_options\(\$\{target\} PRIVATE\s([^)]*)\)'), ...
             strcat('LINKER:--wrap=', words_of(text, 'foreach\(function IN ITEMS\s([^)]*)\)'))];
    flags = strrep(flags, 'LINKER:', '-Wl,');
  end
end

function list = sources_with(files, options)
  list = struct('file', files, 'options', {options});
end

% One source that chooses, and one for each set of instructions.
function list = sources_of_kernels(text, kernels, common)
  list = sources_with({[kernels, '.cpp']}, common);
  for variant = words_of(text, 'foreach\(variant IN ITEMS\s([^)]*)\)')
    own = words_of(text, ['set\(options_', variant{1}, '\s([^)]*)\)']);
    list(end + 1) = sources_with({[kernels, '_', variant{1}, '.cpp']}, [common, own]); %#ok<AGROW>
  end
end

% What changes the code; warnings are the developers' concern. Hidden symbols: see KelvaneMex.cmake.
function options = common_options(project, main)
  standard = words_of(main, 'set\(CMAKE_CXX_STANDARD\s(\d+)\)');
  release = words_of(main, 'set\(CMAKE_CXX_FLAGS_RELEASE\s"([^"]*)"\)');
  own = words_of(cmake_text(project, 'cmake', 'KelvaneCompileOptions.cmake'), ...
                 'target_compile_options\(kelvane_compile_options INTERFACE\s([^)]*)\)');
  own = own(strncmp(own, '-f', 2));
  options = [{['-std=c++', standard{1}]}, release, {'-fvisibility=hidden', '-fvisibility-inlines-hidden'}, own];
end

function words = words_of(text, pattern)
  found = regexp(text, pattern, 'tokens', 'once');
  if isempty(found)
    error('kelvane:build', 'The files of CMake have nothing of the form "%s": kelvane_build does not know them.', pattern);
  end
  words = regexp(found{1}, '\S+', 'match');
end

function text = cmake_text(varargin)
  text = regexprep(fileread(fullfile(varargin{:})), '#[^\n]*', '');
end
