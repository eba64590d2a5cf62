"""Do these twelve times between failures follow an exponential distribution with mean 100 hours?"""
import numpy as np

import orvanth

hours = np.array([3.2, 8.1, 11.4, 17.9, 25.0, 31.7, 38.3, 52.6, 60.4, 77.1, 98.5, 143.0])
n = len(hours)
law = orvanth.gamma_cdf(hours, 1, 100)  # exponential: gamma with shape 1
below, above = np.arange(n) / n, np.arange(1, n + 1) / n
distance = max(np.max(above - law), np.max(law - below))
p = orvanth.kolmogorov_cdf(distance, n, complement=1)
critical = orvanth.kolmogorov_icdf(0.05, n, complement=1)
print(f"D = {distance:.4f}, p = {p:.4f}, critical value at 5 %: {critical:.4f}")
