# The demonstration deployment. README.md says how to make one for real devices.

set(DEPLOYMENT_IS_DEMONSTRATION ON)

# What the programs call the deployment when they are asked for their version.
set(DEPLOYMENT_NAME demonstration)

# PEM files (SubjectPublicKeyInfo) beside this one.
set(DEPLOYMENT_PUBLIC_KEY_2048 device-2048.pem)
set(DEPLOYMENT_PUBLIC_KEY_3072 device-3072.pem)

# What the print dialog encrypts stored passwords with: 32, 32 and 16 bytes in hexadecimal.
set(DEPLOYMENT_STORAGE_KEY_SEED
  7d73cdacab6832d448341d0f5dff941c31be6102f2a89a4adc6462c50b8504f5)
set(DEPLOYMENT_STORAGE_MESSAGE_SEED
  58f55ee897c5891f5a0b6b2644d775a9fae487be25020067da2f6859776eaae6)
set(DEPLOYMENT_STORAGE_IV 4bf768015ca3250aa4a3243c9b047406)

# Parts of the names of models that always get the short comment block.
set(DEPLOYMENT_MODELS_WITH_COMMENT)
