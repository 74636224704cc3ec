export interface EngineOptions {
    /** As on the command line; none: the engine speaks UCI. */
    arguments?: string[];
    /** Files that are there from the start, by name. */
    files?: Record<string, Uint8Array | string>;
    /** How many threads search. */
    threads?: number;
    /** Megabytes of the table, which can become smaller later but not larger. 16 if nothing else is asked for. */
    hash?: number;
    /** False: the build without shared memory. By default, whatever runs here. */
    shared?: boolean;
}

export interface Engine {
    /** Threads can be had. */
    readonly shared: boolean;
    /** The exit status, once the engine has ended. */
    readonly ended: Promise<number>;
    /** Sends a line, without its end. */
    send(line: string): void;
    /** Listens to the lines that the engine says, each without its end. Returns what ends the listening. */
    listen(listener: (line: string) => void): () => void;
    /** The same for what goes to standard error: what went wrong, in words. */
    listenToErrors(listener: (line: string) => void): () => void;
    writeFile(name: string, contents: Uint8Array | string): Promise<void>;
    /** Null: there is no such file. */
    readFile(name: string): Promise<Uint8Array | null>;
    /** Ends it at once, whatever it does, and gives its memory back. */
    end(): Promise<void>;
}

/** Starts an engine. Fails if there is no memory for it, or its files can't be loaded. */
export function startEngine(options?: EngineOptions): Promise<Engine>;
