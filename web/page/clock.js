// Two clocks, of which one runs at most. They count down to nothing, or up where the game has no clock.

/**
 * @param {(clocks: {w: number, b: number}) => void} show called while a clock runs
 * @param {(side: string) => void} flag called once when a clock that counts down has run out
 */
export function createClocks(show, flag) {
  let times = {w: 0, b: 0}, down = false, increment = 0;
  let running = '', since = 0, timer = 0;

  function now() {
    const spent = running ? performance.now() - since : 0;
    const left = {...times};
    if (running) left[running] = down ? Math.max(0, left[running] - spent) : left[running] + spent;
    return left;
  }

  function tick() {
    const left = now();
    show(left);
    if (down && running && left[running] <= 0) {
      const side = running;
      stop();
      flag(side);
    }
  }

  function stop() {
    times = now();
    running = '';
    clearInterval(timer);
    show(times);
  }

  return {
    now,
    stop,
    get running() { return running; },
    /** Milliseconds of both sides, and what a move adds; `countsDown` is false in a game without a clock. */
    set(newTimes, countsDown, newIncrement) {
      running = '';
      clearInterval(timer);
      [times, down, increment] = [{...newTimes}, countsDown, newIncrement];
      show(times);
    },
    /** Lets a side's clock run. @param {string} side */
    run(side) {
      stop();
      running = side;
      since = performance.now();
      timer = setInterval(tick, 100);
    },
    /** Ends a move: stops the clock that runs and adds the increment. Returns the times. */
    moved() {
      const side = running;
      stop();
      if (side && down) times[side] += increment;
      show(times);
      return {...times};
    },
  };
}
