// The module in Node, with shared memory and without: conversations, files, ends in the midst of things.

import assert from 'node:assert/strict';
import {execFile, spawn} from 'node:child_process';
import {mkdtempSync, readFileSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {test} from 'node:test';
import {promisify} from 'node:util';

const root = new URL('../../', import.meta.url);
const {startEngine} = await import(new URL('build/web/package/vrel.js', root));
const HANG = 120000;  // milliseconds: longer than anything takes
const cli = new URL('build/web/package/cli.js', root).pathname;

/** The next line that looks so. */
const heard = (engine, pattern) => new Promise(resolve => {
    const stop = engine.listen(line => {
        if (!pattern.test(line))
            return;
        stop();
        resolve(line);
    });
});

/** Sends lines and waits for an answer to them. */
const answer = (engine, lines, pattern) => {
    const line = heard(engine, pattern);
    lines.forEach(engine.send);
    return line;
};

const onEach = (name, run) => {
    for (const shared of [true, false])
        test(`${name}, ${shared ? 'with' : 'without'} shared memory`, {timeout: HANG}, async () => {
            const engines = [];
            const start = async options => {
                engines.push(await startEngine({shared, ...options}));
                return engines.at(-1);
            };
            try {
                await run(start, shared);
            } finally {
                for (const engine of engines)
                    await engine.end();
            }
        });
};

const NODES = /^info depth 9 .* nodes (\d+)/;

onEach('the same nodes as everywhere', async start => {
    const engine = await start({arguments: ['bench', '6']});
    const lines = [];
    engine.listen(line => lines.push(line));
    assert.equal(await engine.ended, 0);
    const transcript = readFileSync(new URL('tests/transcripts/bench.txt', root), 'utf8');
    assert.match(lines[0], /^ +\d+ {2}rnbqkbnr\/pppppppp/);
    assert.equal(lines.length - 1, transcript.split('\n').filter(line => /^ +\d+ {2}\S+ [wb] /.test(line)).length);
    const whole = await promisify(execFile)('node', [cli, 'bench', '6']);
    assert.equal(lines.at(-1).split(' ')[0], whole.stdout.trim().split('\n').at(-1).split(' ')[0]);
});

onEach('a search ends by stop, by another and by itself', async start => {
    const engine = await start();
    await answer(engine, ['uci'], /^uciok$/);
    await answer(engine, ['isready'], /^readyok$/);
    engine.send('position startpos moves e2e4');
    const first = await answer(engine, ['go depth 9'], NODES);
    for (const ending of [['stop'], ['go depth 1'], ['ucinewgame']]) {
        const begun = heard(engine, /^info depth [6-9] /);
        const reply = heard(engine, /^bestmove [a-h][1-8]/);
        engine.send('go infinite');
        await begun;
        ending.forEach(engine.send);
        await reply;
    }
    const ponder = heard(engine, /^bestmove/);
    ['setoption name Clear Hash', 'position startpos moves e2e4', 'go ponder movetime 50'].forEach(engine.send);
    engine.send('ponderhit');
    await ponder;
    // Position and options are those from before.
    const again = await answer(engine, ['setoption name Clear Hash', 'position startpos moves e2e4', 'go depth 9'], NODES);
    assert.equal(NODES.exec(again)[1], NODES.exec(first)[1]);
    engine.send('quit');
    assert.equal(await engine.ended, 0);
});

onEach('files are put in and taken out, before, meanwhile and afterwards', async start => {
    const suite = '4k3/8/8/8/8/8/4P3/4K3 w - - bm e8e1; id "none";\n';
    const engine = await start({arguments: ['-anepd', 'in.epd', '-d', '3'], files: {'in.epd': suite}});
    assert.equal(await engine.ended, 0);
    assert.equal(new TextDecoder().decode(await engine.readFile('unsolved.epd')), suite);
    const other = await start();
    const searching = heard(other, /^info depth 3 /);
    other.send('go movetime 200');
    await searching;
    const bytes = Uint8Array.from({length: 300000}, (_, i) => i % 251);
    await other.writeFile('bytes', bytes);
    assert.deepEqual(await other.readFile('bytes'), bytes);
    assert.equal(await other.readFile('none'), null);
});

onEach('what there is no room for is cut, with a word', async (start, shared) => {
    const engine = await start({hash: 4});
    const words = [];
    engine.listenToErrors(word => words.push(word));
    assert.equal(await answer(engine, ['setoption name Hash value 8192'], /^info string Hash/), 'info string Hash size set to 4M bytes');
    assert.deepEqual(words, ['Hash 8192: there is room for 4']);
    await answer(engine, [`setoption name Threads value ${shared ? 2 : 3}`, 'go depth 6'], /^bestmove/);
    assert.equal(words.length, shared ? 1 : 2);
});

onEach('bad input of any kind, and an end at once', async start => {
    const engine = await start();
    await answer(engine, ['position fen 8/8/8/8/8/8/8/8 w - -', 'go depth 3'], /^bestmove (?![a-h])/);
    const lines = ['', '\u0000@\ufeff€', 'x'.repeat(200000), 'setoption name', 'position startpos moves e2e5', 'go depth 4'];
    await answer(engine, lines, /^bestmove [a-h]/);
    engine.send('go infinite');
    await engine.end();
    await engine.ended;
});

test('the program works with the files of its folder', {timeout: HANG}, async () => {
    const folder = mkdtempSync(join(tmpdir(), 'vrel-'));
    writeFileSync(join(folder, 'in.epd'), '4k3/8/8/8/8/8/4P3/4K3 w - - bm e8e1; id "none";\n');
    await promisify(execFile)('node', [cli, '-anepd', 'in.epd', '-d', '2'], {cwd: folder});
    assert.match(readFileSync(join(folder, 'unsolved.epd'), 'utf8'), /id "none"/);
});

test('the program ends with its input, and when nobody reads', {timeout: HANG}, async () => {
    const status = program => new Promise(resolve => program.on('exit', resolve));
    const first = spawn('node', [cli, '-nolog']);
    first.stdin.end('go depth 5');
    let said = '';
    first.stdout.on('data', bytes => { said += bytes; });
    assert.equal(await status(first), 0);
    assert.match(said, /bestmove/);
    const second = spawn('node', [cli, '-nolog']);
    second.stdout.destroy();
    second.stdin.write('uci\nisready\n');
    assert.equal(await status(second), 0);
});

test('the example of the package runs', {timeout: HANG}, async () => {
    const [example, same] = ['README.md', 'web/module/README.md'].map(
        name => /```js\n([^]*?)```/.exec(readFileSync(new URL(name, root), 'utf8'))[1]);
    assert.equal(example, same);
    const file = join(mkdtempSync(join(tmpdir(), 'vrel-')), 'example.mjs');
    writeFileSync(file, example.replace("'vrel'", JSON.stringify(new URL('build/web/package/vrel.js', root).href)));
    const {stdout} = await promisify(execFile)('node', [file]);
    assert.match(stdout, /^bestmove \S+/);
});
