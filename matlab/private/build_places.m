% SPDX-License-Identifier: BSD-3-Clause
% Where mex finds and leaves things, a struct of folders: project, with the sources; objects, a new one for what is compiled;
% output, that of the modules, where suffix stands behind the name of each until all are whole. Octave's mex hands its inputs
% to a shell, twice, so that a blank or a quote in a folder's name would end it: there project and output are to be links in
% the folder objects.
function places = build_places(host, project, output)
  if strcmp(host, 'octave')
    parent = tempdir();
    if ~isempty(regexp(parent, '[^\w./-]', 'once'))
      parent = '/tmp';
    end
    objects = tempname(parent);
    project = fullfile(objects, 'project');
    output = fullfile(objects, 'output');
  else
    objects = tempname();
  end
  [~, random] = fileparts(objects);
  places = struct('project', project, 'objects', objects, 'output', output, 'suffix', ['_', random]);
end
