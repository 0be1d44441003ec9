# SPDX-License-Identifier: MIT
"""Shows GTK dialogs: gtk_popups.py NAME…; prints "closed NAME" when one's button is pressed."""
import sys

import gi

gi.require_version('Gtk', '3.0')
from gi.repository import Gtk  # noqa: E402

# Name: (heading, text, the button, the icon's own name). The icon says what a text in no known language means.
POPUPS = {
    'english': ('Power', 'Low battery: 10% remaining', 'Close', None),
    'spanish': ('Energía', 'BATERÍA BAJA: queda un 10 %', 'Cerrar', None),
    'ordinary': ('Calendar', 'Meeting at ten', 'Close', None),
    'icon': ('Energie', 'Der Akku ist fast leer', 'Close', 'battery-caution-symbolic'),
}


def show(name):
    heading, text, button, icon = POPUPS[name]
    dialog = Gtk.Dialog(title=heading)
    box = dialog.get_content_area()
    for words in (heading, text):
        row = Gtk.Box()
        row.add(Gtk.Label(label=words))
        box.add(row)
    if icon:
        image = Gtk.Image.new_from_icon_name(icon, Gtk.IconSize.DIALOG)
        image.get_accessible().set_image_description(icon)
        box.add(image)
    # "Later" stands first: not whatever button comes first is pressed.
    dialog.add_button('Later', 1)
    dialog.add_button(button, 2)

    def responded(_, response):
        print('closed' if response == 2 else 'answered', name, flush=True)
        dialog.destroy()

    dialog.connect('response', responded)
    dialog.show_all()


for argument in sys.argv[1:]:
    show(argument)
print('shown', flush=True)
Gtk.main()
