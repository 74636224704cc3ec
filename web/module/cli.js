#!/usr/bin/env node
// The program on standard input and output, with the same arguments as on any other system.

import {isatty} from 'node:tty';

import {startRun} from './run.js';

const run = await startRun({
    shared: true, arguments: () => process.argv.slice(2), files: {}, hash: 2048, threads: 1, direct: true,
    terminals: [0, 1, 2].map(isatty),
});
process.stdin.on('data', bytes => run.write(bytes));
process.stdin.on('end', run.endInput);
process.stdin.on('error', run.endInput);
run.ended.then(status => process.exit(status));
