% SPDX-License-Identifier: BSD-3-Clause
% Tasks of MATLAB's build tool, from R2022b on: "buildtool" in this folder compiles the modules and runs the tests in MATLAB.
function plan = buildfile()
  plan = buildplan(localfunctions());
  plan("test").Dependencies = "mex";
  plan("package").Dependencies = "test";
  plan.DefaultTasks = "test";
end

function mexTask(~)
% Compile kelvane_mex and kelvane_engine beside their help
  kelvane_build();
end

function checkTask(context)
% Look for what MATLAB's code analyser calls an error
  issues = codeIssues(context.Plan.RootFolder);
  errors = issues.Issues(issues.Issues.Severity == "error", :);
  assert(isempty(errors), 'kelvane:codeIssues', '%s', formattedDisplayText(errors));
end

function testTask(context)
% Run the classes in tests/matlab
  assertSuccess(runtests(fullfile(fileparts(context.Plan.RootFolder), 'tests', 'matlab')));
end

function packageTask(context)
% Make kelvane.mltbx, a toolbox to install by a double click, from R2023a on
  folder = context.Plan.RootFolder;
  about = matlab.addons.toolbox.ToolboxOptions(folder, 'kelvane-camera-pose-refinement');
  about.ToolboxName = 'kelvane';
  about.ToolboxVersion = project_version(fileparts(folder));
  about.Summary = 'Camera pose refinement';
  about.MinimumMatlabRelease = 'R2019b';
  about.SupportedPlatforms = struct('Win64', false, 'Glnxa64', true, 'Maci64', false, 'MatlabOnline', false);
  about.OutputFile = fullfile(fileparts(folder), 'build', 'kelvane.mltbx');
  matlab.addons.toolbox.packageToolbox(about);
end

function number = project_version(project)
  text = fileread(fullfile(project, 'kelvane.build'));
  number = regexp(text, '^version: ([\d.]+)', 'tokens', 'once', 'lineanchors');
  number = number{1};
end
