# SPDX-License-Identifier: Apache-2.0
# Lays out bundles: a plug-in's, and a host program's own.
