"""Twenty thousand t tests on a cluster: which genes differ between five treated and five untreated samples?"""
import dask
import dask.array as da
import numpy as np

import orvanth

genes = 20000


def p_values(block):
    """Two-sided p-values of the t tests of a block of genes. A worker sends back one number a gene."""
    treated, control = block[:, :5], block[:, 5:]
    error = np.sqrt((treated.var(axis=1, ddof=1) + control.var(axis=1, ddof=1)) / 5)
    return 2 * orvanth.student_t_cdf(abs(treated.mean(axis=1) - control.mean(axis=1)) / error, 8, upper=True)


# Simulated data; the first 500 genes respond to the treatment.
data = orvanth.random.normals(1, genes * 10).reshape(10, genes).T
data[:500, :5] += 4
# On a cluster: from dask.distributed import Client; Client("address of the scheduler")
with dask.config.set(scheduler="threads"):
    p = da.from_array(data, chunks=(5000, 10)).map_blocks(p_values, drop_axis=1, dtype=float).compute()

# Benjamini and Hochberg: at most 5 % of what is found is expected to be false.
order = np.argsort(p)
passed = np.flatnonzero(p[order] <= 0.05 * np.arange(1, genes + 1) / genes)
found = order[:passed[-1] + 1] if len(passed) else order[:0]
print(f"found {len(found)} genes, {np.sum(found >= 500)} of them by chance")
