// What is asked for beyond what there can be: the most there is, with a word about it.

/** @typedef {{Hash: number, Threads: number}} Limits  in megabytes, and in number */

/** @param {string} name @param {string} value @param {Limits} limits @param {(word: string) => void} complain */
function within(name, value, limits, complain) {
    const most = limits[name];
    if (!(Number(value) > most))
        return value;
    complain(`${name} ${value}: there is room for ${most}`);
    return String(most);
}

/**
 * Lines of UCI.
 * @param {string} lines @param {Limits} limits @param {(word: string) => void} complain
 */
export const limitLines = (lines, limits, complain) =>
    lines.replace(/(\bsetoption\s+name\s+(Hash|Threads)\s+value\s+)(\d+)/g,
        (_, start, name, value) => start + within(name, value, limits, complain));

const OPTIONS = {'-hash': 'Hash', '-threads': 'Threads'};

/**
 * Words of the command line.
 * @param {string[]} words @param {Limits} limits @param {(word: string) => void} complain
 */
export const limitWords = (words, limits, complain) =>
    words.map((word, i) => {
        const name = OPTIONS[words[i - 1]];
        return name && /^\d+$/.test(word) ? within(name, word, limits, complain) : word;
    });
