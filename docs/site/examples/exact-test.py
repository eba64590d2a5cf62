"""Do these twelve times between failures follow an exponential distribution with mean 100 hours?"""
import orvanth
from orvanth import stats

hours = [3.2, 8.1, 11.4, 17.9, 25.0, 31.7, 38.3, 52.6, 60.4, 77.1, 98.5, 143.0]
result = stats.ks_1samp(hours, orvanth.gamma_cdf, args=(1, 100))  # exponential: gamma with shape 1
critical = orvanth.kolmogorov_icdf(0.05, len(hours), complement=1)
print(f"D = {result.statistic:.4f}, p = {result.pvalue:.4f}, critical value at 5 %: {critical:.4f}")
