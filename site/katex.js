// SPDX-License-Identifier: BSD-3-Clause
// node katex.js FILE: formulas to HTML with the KaTeX in FILE, a line of JSON for a line of JSON.
const katex = require(process.argv[2]);
const lines = require('readline').createInterface({input: process.stdin});
lines.on('line', (line) => {
  const {formula, display} = JSON.parse(line);
  let answer;
  try {
    answer = {html: katex.renderToString(formula, {displayMode: display, strict: 'error'})};
  } catch (error) {
    answer = {error: error.message};
  }
  process.stdout.write(JSON.stringify(answer) + '\n');
});
