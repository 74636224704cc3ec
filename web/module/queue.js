// The engine's standard input: a ring of bytes in its memory, which the host writes and the engine takes. Six numbers
// stand ahead of it.
const TAKEN = 1, ENDED = 2, WAKES = 3, HOLDING_BACK = 4, PIECES = 5;
const WRITTEN = 0, NUMBERS = 6, SIZE = 65536;

/** @typedef {{memory: WebAssembly.Memory, address: number}} Queue */

/** @param {Queue} queue */
const numbers = queue => new Int32Array(queue.memory.buffer, queue.address, NUMBERS);

/** Wakes the engine, whatever it waits for. @param {Int32Array} fields */
function wake(fields) {
    Atomics.add(fields, WAKES, 1);
    Atomics.notify(fields, WAKES);
}

/**
 * Writes as many bytes as there is room for and tells their number. What is held back can be written when the engine
 * asks for more.
 * @param {Queue} queue @param {Uint8Array} bytes
 */
export function writeInput(queue, bytes) {
    const fields = numbers(queue);
    const ring = new Uint8Array(queue.memory.buffer, queue.address + 4 * NUMBERS, SIZE);
    const written = Atomics.load(fields, WRITTEN);
    const room = () => SIZE - ((written - Atomics.load(fields, TAKEN)) >>> 0);
    if (room() < bytes.length)
        Atomics.store(fields, HOLDING_BACK, 1);
    const part = bytes.subarray(0, room());
    const start = (written >>> 0) % SIZE;
    const first = part.subarray(0, SIZE - start);
    ring.set(first, start);
    ring.set(part.subarray(first.length), 0);
    Atomics.store(fields, WRITTEN, written + part.length);
    wake(fields);
    return part.length;
}

/** There will be no more. @param {Queue} queue */
export function endInput(queue) {
    const fields = numbers(queue);
    Atomics.store(fields, ENDED, 1);
    wake(fields);
}

/** Numbers the pieces of output, in the order in which all threads write them. @param {Queue} queue */
export const nextPiece = queue => Atomics.add(numbers(queue), PIECES, 1);
