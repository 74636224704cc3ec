#!/usr/bin/env node
// The program on standard input and output, with the same arguments as on any other system.

import {isatty} from 'node:tty';

import {limitLines} from './limits.js';
import {startRun} from './run.js';

/** @param {string} word */
const complain = word => process.stderr.write(`${word}\n`);

const run = await startRun({
    shared: true, arguments: process.argv.slice(2), files: {}, hash: 2000, threads: 1, mostThreads: 64, direct: true,
    terminals: [0, 1, 2].map(isatty), hearError: bytes => void process.stderr.write(bytes),
});
// Every byte as it is, whatever text it may be.
process.stdin.on('data', bytes =>
    run.write(Buffer.from(limitLines(bytes.toString('latin1'), run.limits, complain), 'latin1')));
process.stdin.on('end', run.endInput);
process.stdin.on('error', run.endInput);
run.ended.then(status => process.exit(status));
