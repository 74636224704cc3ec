// What a thread of the engine needs of Node: the port to its host, the standard streams, and the files of the folder
// that the program runs in. Files are known by their numbers, failures by the error below 0.

import fs from 'node:fs';
import {parentPort} from 'node:worker_threads';

export const port = /** @type {import('node:worker_threads').MessagePort} */ (parentPort);

// Errors under the numbers that the engine's library has for them.
const ERRORS = {
    EACCES: 2, EAGAIN: 6, EBADF: 8, EBUSY: 10, EEXIST: 20, EFBIG: 22, EINVAL: 28, EIO: 29, EISDIR: 31, ELOOP: 32,
    EMFILE: 33, ENAMETOOLONG: 37, ENFILE: 41, ENODEV: 43, ENOENT: 44, ENOSPC: 51, ENOTDIR: 54, ENOTEMPTY: 55, ENXIO: 60,
    EPERM: 63, EPIPE: 64, EROFS: 69, ESPIPE: 70, ETXTBSY: 74, EXDEV: 75,
};

/** @param {() => number} call */
function tried(call) {
    try {
        return call();
    } catch (error) {
        return -(ERRORS[/** @type {NodeJS.ErrnoException} */ (error).code ?? ''] ?? ERRORS.EIO);
    }
}

const pause = new Int32Array(new SharedArrayBuffer(4));

/**
 * Writes everything to a standard stream, waiting for a slow reader. False if there is no reader any more.
 * @param {number} stream @param {Uint8Array} bytes
 */
export function write(stream, bytes) {
    while (bytes.length > 0) {
        const count = tried(() => fs.writeSync(stream, bytes));
        if (count === -ERRORS.EAGAIN)
            Atomics.wait(pause, 0, 0, 1);
        else if (count < 0)
            return count !== -ERRORS.EPIPE && count !== -ERRORS.EIO;
        else
            bytes = bytes.subarray(count);
    }
    return true;
}

const {O_APPEND, O_CREAT, O_RDONLY, O_RDWR, O_TRUNC, O_WRONLY} = fs.constants;
const FLAGS = {r: 0, w: O_CREAT | O_TRUNC, a: O_CREAT | O_APPEND};

/** @param {string} mode as fopen has it */
const flagsOf = mode => FLAGS[mode[0]] | (mode.includes('+') ? O_RDWR : mode[0] === 'r' ? O_RDONLY : O_WRONLY);

/**
 * @param {() => WebAssembly.Memory} memory
 * @param {(address: number) => string} text
 */
export function files(memory, text) {
    const bytes = (address, size) => new Uint8Array(memory().buffer, address >>> 0, size);
    const place = number => number < 0 ? null : number;
    return {
        lendsFiles: () => true,
        open: (name, mode) => tried(() => {
            const file = fs.openSync(text(name), flagsOf(text(mode)));
            if (!fs.fstatSync(file).isDirectory())
                return file;
            fs.closeSync(file);
            return -ERRORS.EISDIR;
        }),
        close: file => void tried(() => (fs.closeSync(file), 0)),
        readAt: (file, address, size, from) => tried(() => fs.readSync(file, bytes(address, size), 0, size, place(from))),
        writeAt: (file, address, size, to) => tried(() => fs.writeSync(file, bytes(address, size), 0, size, place(to))),
        cutTo: (file, size) => tried(() => (fs.ftruncateSync(file, size), 0)),
        sizeOf: file => tried(() => {
            const status = fs.fstatSync(file);
            return status.isFile() ? status.size : -1;
        }),
        exists: name => fs.existsSync(text(name)),
        stamp: (name, address) => tried(() => {
            const status = fs.statSync(text(name), {bigint: true});
            if (!status.isFile())
                return 0;
            new BigInt64Array(memory().buffer, address >>> 0, 4).set([status.dev, status.ino, status.size, status.mtimeNs]);
            return 1;
        }) > 0,
        remove: name => tried(() => (fs.unlinkSync(text(name)), 0)),
        rename: (from, to) => tried(() => (fs.renameSync(text(from), text(to)), 0)),
        // Nothing marks a file here. What can't be taken away is somebody's.
        claim: name => {
            const removed = tried(() => (fs.unlinkSync(text(name)), 0));
            if (removed < 0 && removed !== -ERRORS.ENOENT)
                return -ERRORS.EBUSY;
            return tried(() => fs.openSync(text(name), 'wx', 0o666));
        },
        release: file => void tried(() => (fs.closeSync(file), 0)),
    };
}
