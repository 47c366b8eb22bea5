"""Draws mutants from sources by seed."""

import collections
import random

from mutation.mutants import find_mutants

# Of all mutants, what a file with a single line gets.
SMALLEST_SHARE = 1 / 300


def shuffled_mutants(file, text, seed):
    """A file's mutants in the order in which they are drawn, first one of each place, in random
    order, then a second one of each, and so on; and the number of lines that they are on."""
    source = random.Random(f"{seed} {file}")
    sites = collections.defaultdict(list)
    for mutant in find_mutants(file, text):
        sites[mutant.site].append(mutant)
    order = sorted(sites)
    source.shuffle(order)
    for site in order:
        source.shuffle(sites[site])
    rounds = max((len(each) for each in sites.values()), default=0)
    queue = [sites[site][number] for number in range(rounds) for site in order
             if number < len(sites[site])]
    return queue, len({text.count("\n", 0, start) for start, _, _ in sites})


class Draw:
    """Draws mutants so that each file's share of those counted follows its lines that offer any,
    and that no such file goes without. A longer draw goes on where a shorter one ends."""

    def __init__(self, sources, seed):
        self.queues, self.weights = {}, {}
        for file, text in sources.items():
            queue, line_nb = shuffled_mutants(file, text, seed)
            if queue:
                self.queues[file] = collections.deque(queue)
                self.weights[file] = line_nb
        least = SMALLEST_SHARE * sum(self.weights.values())
        self.weights = {file: max(weight, least) for file, weight in self.weights.items()}
        self.counted = collections.Counter()

    def next(self):
        open_files = [file for file in self.queues if self.queues[file]]
        if not open_files:
            return None
        file = min(open_files, key=lambda f: ((self.counted[f] + 1) / self.weights[f], f))
        return self.queues[file].popleft()

    def count(self, file):
        self.counted[file] += 1
