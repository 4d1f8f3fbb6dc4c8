"""Save, check the document, and compare what it holds with the capture.   usage: CAPTURE FOLDER"""

import sys

import kaanimation

capture, folder = sys.argv[1:]
scene, document = f"{folder}/saved.osg", f"{folder}/saved.xml"
with kaanimation.open(capture) as project:
    before = project.summary()
    project.save(scene, document)

print(len(kaanimation.validate(document, scene)), "things wrong with the document")
with kaanimation.open(scene, document) as project:
    comparison = kaanimation.compare(before, project.summary(), tolerance=1e-4)
print(f"{comparison.samples} values compared; the largest difference is {comparison.values[0].error:.2g}")
